#include "shards/run_messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/project_folder.h"

namespace {

using Quillet::NameMessages;
using Quillet::RunMessages;
using ::testing::ElementsAre;
using Names = std::vector<std::string>;

const std::string opening = banner() + "Reading file /a/.quilletrc\n";

std::string invalid(const std::string& name, const std::string& folder = "/a/chromat_dir/") {
  return "ERROR: invalid trace file " + folder + name + " - skipping.\n";
}

std::string unqualified(const std::string& name, const std::string& folder = "/a/chromat_dir/") {
  return "Warning: missing quality values in trace file " + folder + name + " - skipping.\n";
}

std::string inProject(const std::string& name) { return invalid(name, "/p/traces/"); }

std::string complaint(const std::string& name, const std::string& folder = "/a/chromat_dir/") {
  return "\ngzip: " + folder + name + ": unexpected end of file\n";
}

RunMessages cutMessages(const Names& names, const std::string& printed) {
  return Quillet::cutMessages({.resourceFile = "/a/.quilletrc",
                               .chromatPath = "/a/chromat_dir/",
                               .shownChromatPath = "/p/traces/",
                               .names = names},
                              printed);
}

/// The texts by name; "+" stands before those that hold the converter's own message.
Names cut(const Names& names, const std::string& printed) {
  Names texts;
  for (const NameMessages& name : cutMessages(names, printed).byName) {
    texts.push_back((name.hasMessage ? "+" : "") + name.text);
  }
  return texts;
}

TEST(RunMessages, OpeningAndMeterAreNoMessages) {
  EXPECT_THAT(cut({"a", "b"}, opening + meterLines({0, 50, 100})), ElementsAre("", ""));
  EXPECT_THAT(cut({}, opening + meterLines({0})), ElementsAre());
}

TEST(RunMessages, AMessageGoesToItsNameWithTheProjectsPath) {
  const std::string printed =
      opening + meterLines({0, 34}) + invalid("a") + meterLines({67, 100}) + unqualified("c");

  EXPECT_THAT(cut({"a", "b", "c"}, printed),
              ElementsAre("+" + inProject("a"), "", "+" + unqualified("c", "/p/traces/")));
}

TEST(RunMessages, AMessageNamesATraceWithoutItsGz) {
  EXPECT_THAT(cut({"a.gz", "b.gz.gz"}, opening + invalid("a") + invalid("b.gz")),
              ElementsAre("+" + inProject("a"), "+" + inProject("b.gz")));
}

TEST(RunMessages, EachRepetitionHasItsOwn) {
  EXPECT_THAT(cut({"a", "b", "a"}, opening + invalid("a") + invalid("a")),
              ElementsAre("+" + inProject("a"), "", "+" + inProject("a")));
}

TEST(RunMessages, NamesMayLookLikeMessagesAndMeterLines) {
  const Names names = {"a", "a - skipping.\nb", "c\n 100% done\n", "", "  50% done"};
  std::string printed = opening + meterLines({0});
  Names expected;
  for (const std::string& name : names) {
    printed += meterLines({20}) + invalid(name);
    expected.push_back("+" + inProject(name));
  }

  EXPECT_THAT(cut(names, printed), testing::ElementsAreArray(expected));
}

TEST(RunMessages, ALongerNameIsNotMistakenForAShorterOneWithoutMessage) {
  EXPECT_THAT(cut({"a", "a - skipping.\nb"}, opening + invalid("a - skipping.\nb")),
              ElementsAre("", "+" + inProject("a - skipping.\nb")));
}

TEST(RunMessages, GunzipsComplaintsStandBeforeTheMessageOfTheirTrace) {
  const std::string printed = opening + meterLines({0, 25}) + complaint("a.gz") + meterLines({50}) +
                              complaint("b.gz") + invalid("b") + meterLines({75, 100}) +
                              "sh: 1: gunzip: not found\n" + invalid("d");

  EXPECT_THAT(cut({"a.gz", "b", "c", "d.gz"}, printed),
              ElementsAre(complaint("a.gz", "/p/traces/"),
                          "+" + complaint("b.gz", "/p/traces/") + inProject("b"),
                          "sh: 1: gunzip: not found\n", "+" + inProject("d")));
}

TEST(RunMessages, ADirectorysComplaintGoesToItsName) {
  const std::string complaint = "gzip: /a/chromat_dir/b.gz is a directory -- ignored\n";

  EXPECT_THAT(
      cut({"a.gz", "b.gz", "b"}, opening + complaint + invalid("b")),
      ElementsAre("", "+gzip: /p/traces/b.gz is a directory -- ignored\n" + inProject("b"), ""));
}

TEST(RunMessages, WhatSpeaksOfNoTraceIsTrouble) {
  const std::string trouble[] = {"sh: 1: gunzip: not found\n",
                                 "\ngzip: stdout: No space left on device\n",
                                 "File size limit exceeded\n"};
  for (const std::string& text : trouble) {
    EXPECT_EQ(cutMessages({"a.gz"}, opening + meterLines({0, 100}) + text + invalid("a")).trouble,
              text.substr(text.starts_with('\n') ? 1 : 0));
  }
  EXPECT_EQ(cutMessages({"a.gz", "b\nc"}, opening + meterLines({0, 50}) + complaint("a.gz") +
                                              meterLines({100}) + invalid("b\nc"))
                .trouble,
            "");
}

TEST(RunMessages, AWarningAboutTheEnvironmentIsNoTrouble) {
  const std::string warnings[] = {
      "gzip: warning: GZIP environment variable is deprecated; use an alias or script\n",
      "sh: warning: setlocale: LC_ALL: cannot change locale (xx_YY.UTF-8)\n",
      "/usr/bin/gunzip: line 2: warning: setlocale: LC_ALL: cannot change locale (xx_YY)\n"};
  for (const std::string& text : warnings) {
    const RunMessages messages =
        cutMessages({"a.gz"}, opening + meterLines({0}) + text + meterLines({100}) + invalid("a"));

    EXPECT_EQ(messages.trouble, "");
    EXPECT_EQ(messages.byName[0].text, text + inProject("a"));
  }
}

TEST(RunMessages, NothingIsLost) {
  EXPECT_THAT(cut({"a", "b"}, "strange\n" + invalid("unknown") + invalid("b") + "end"),
              ElementsAre("strange\n" + inProject("unknown"), "+" + inProject("b") + "end"));
  EXPECT_THAT(cut({"a"}, opening + "ERROR: invalid trace file /a/chromat_dir/a - ski"),
              ElementsAre("ERROR: invalid trace file /p/traces/a - ski"));
}

}  // namespace
