#include "app/flags.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "app/parse_error.h"

namespace {

using Quillet::applyFlags;
using Quillet::Settings;
using Words = std::vector<std::string>;

/// The message about the first bad word; empty when there is none.
std::string complaintAbout(const Words& words, Settings& settings,
                           const std::string& source = "COMMAND LINE") {
  try {
    applyFlags(settings, words, source);
  } catch (const Tessaly::ParseError& error) {
    return error.what();
  }
  return {};
}

std::string complaintAbout(const Words& words) {
  Settings settings;
  return complaintAbout(words, settings);
}

TEST(Flags, EachFlagChangesItsOwnSettingInBothSpellings) {
  const struct {
    Words words;
    std::string dataDir;
    std::string listFile;
    bool overwrite;
    bool stripExtensions;
  } cases[] = {
      {{}, "", "", false, true},
      {{"-d", "proj"}, "proj/", "", false, true},
      {{"-dir", "proj"}, "proj/", "", false, true},
      {{"-l", "names"}, "", "names", false, true},
      {{"-list", "names"}, "", "names", false, true},
      {{"-o"}, "", "", true, true},
      {{"-overwrite"}, "", "", true, true},
      {{"-s"}, "", "", false, false},
      {{"-nostrip"}, "", "", false, false},
      {{"-s", "-d", "/p", "-o", "-l", "-"}, "/p/", "-", true, false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(::testing::PrintToString(row.words));
    Settings settings;
    applyFlags(settings, row.words, "COMMAND LINE");
    EXPECT_EQ(settings.dataDir, row.dataDir);
    EXPECT_EQ(settings.listFile_, row.listFile);
    EXPECT_EQ(settings.overwrite, row.overwrite);
    EXPECT_EQ(settings.stripExtensions, row.stripExtensions);
  }
}

TEST(Flags, TheDirectoriesInsideTheProjectHaveNoFlag) {
  Settings settings;
  applyFlags(settings, {"-d", "p", "-l", "n", "-o", "-s"}, "COMMAND LINE");

  EXPECT_EQ(settings.chromatDir, "chromat_dir/");
  EXPECT_EQ(settings.editDir, "edit_dir/");
  EXPECT_EQ(settings.phdDir, "phd_dir/");
  EXPECT_EQ(settings.polyDir, "poly_dir/");
  for (const char* word : {"-chromatdir", "-phddir", "-polydir", "-editdir"}) {
    EXPECT_EQ(complaintAbout({word}), "in COMMAND LINE: invalid flag `" + std::string(word) + "'");
  }
}

TEST(Flags, TheDataDirectoryGetsATrailingSlashUnlessItHasOne) {
  const struct {
    const char* given;
    const char* expected;
  } cases[] = {{"/data/proj", "/data/proj/"},
               {"/data/proj/", "/data/proj/"},
               {"/", "/"},
               {"..", "../"},
               {"", ""}};
  for (const auto& row : cases) {
    Settings settings;
    applyFlags(settings, {"-d", row.given, "-o"}, "COMMAND LINE");
    EXPECT_EQ(settings.dataDir, row.expected);
    EXPECT_TRUE(settings.overwrite);  // the argument was taken, the next word is a flag
  }
}

TEST(Flags, TheArgumentIsTakenUnchangedEvenWhenItBeginsWithAHyphen) {
  Settings settings;
  applyFlags(settings, {"-d", "-o", "-l", "-s"}, "COMMAND LINE");

  EXPECT_EQ(settings.dataDir, "-o/");
  EXPECT_EQ(settings.listFile_, "-s");
  EXPECT_FALSE(settings.overwrite);
  EXPECT_TRUE(settings.stripExtensions);
}

TEST(Flags, ALaterOccurrenceOverridesAnEarlierOne) {
  Settings settings;
  applyFlags(settings, {"-d", "first", "-l", "one", "-dir", "second", "-list", "two"}, "any");

  EXPECT_EQ(settings.dataDir, "second/");
  EXPECT_EQ(settings.listFile_, "two");
}

TEST(Flags, AnEmptyArgumentTakesTheEarlierOneBack) {
  Settings settings;
  applyFlags(settings, {"-d", "first", "-l", "one", "-d", "", "-l", ""}, "any");

  EXPECT_EQ(settings.dataDir, "");
  EXPECT_EQ(settings.listFile_, "");
}

TEST(Flags, OverwriteGivenTwiceIsAccepted) {
  Settings settings;
  applyFlags(settings, {"-o", "-o"}, "COMMAND LINE");

  EXPECT_TRUE(settings.overwrite);
}

TEST(Flags, NostripGivenTwiceIsAccepted) {
  Settings settings;
  applyFlags(settings, {"-s", "-s"}, "COMMAND LINE");
  EXPECT_FALSE(settings.stripExtensions);
}

TEST(Flags, NothingTurnsStrippingOnAgain) {
  Settings settings;
  applyFlags(settings, {"-nostrip", "-nostrip", "-s"}, "COMMAND LINE");

  EXPECT_FALSE(settings.stripExtensions);
  EXPECT_EQ(complaintAbout({"-strip"}), "in COMMAND LINE: invalid flag `-strip'");
}

TEST(Flags, HelpAndVersionAreAcceptedAndChangeNothing) {
  Settings settings;
  applyFlags(settings, {"-h", "-help", "--help", "-version", "--version"}, "COMMAND LINE");

  EXPECT_EQ(settings.dataDir, "");
  EXPECT_EQ(settings.listFile_, "");
  EXPECT_FALSE(settings.overwrite);
  EXPECT_TRUE(settings.stripExtensions);
}

TEST(Flags, AMissingArgumentIsReportedInTheSpellingThatWasUsed) {
  const struct {
    Words words;
    std::string expected;
  } cases[] = {
      {{"-d"}, "in COMMAND LINE: `-d' requires an argument."},
      {{"-dir"}, "in COMMAND LINE: `-dir' requires an argument."},
      {{"-l"}, "in COMMAND LINE: `-l' requires an argument."},
      {{"-list"}, "in COMMAND LINE: `-list' requires an argument."},
      {{"-o", "-d"}, "in COMMAND LINE: `-d' requires an argument."},
      {{"-d", "proj", "-dir"}, "in COMMAND LINE: `-dir' requires an argument."},
      {{"-d", "-d", "-l"}, "in COMMAND LINE: `-l' requires an argument."},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(complaintAbout(row.words), row.expected);
  }
}

TEST(Flags, AnyOtherWordIsAnInvalidFlag) {
  const char* words[] = {"-v",    "-verbose", "--dir",       "-D",        "-O",       "sample.ab1",
                         "",      "-",        "--",          "-os",       "-do",      "-d=proj",
                         "-dirs", "-over",    "--overwrite", "--nostrip", "o",        " -o",
                         "-o ",   "-Help",    "--h",         "-V",        "-versions"};
  for (const std::string word : words) {
    EXPECT_EQ(complaintAbout({word}), "in COMMAND LINE: invalid flag `" + word + "'");
  }
}

TEST(Flags, TheCommandLineTakesNoFileNames) {
  EXPECT_EQ(complaintAbout({"-o", "chromat_dir/a.ab1", "b.scf"}),
            "in COMMAND LINE: invalid flag `chromat_dir/a.ab1'");
}

TEST(Flags, TheSourceNamesWhereABadWordStands) {
  Settings settings;

  EXPECT_EQ(complaintAbout({"-q"}, settings, ".quilletrc file"),
            "in .quilletrc file: invalid flag `-q'");
  EXPECT_EQ(complaintAbout({"-d"}, settings, ".quilletrc file"),
            "in .quilletrc file: `-d' requires an argument.");
  EXPECT_EQ(complaintAbout({"-q"}, settings, ""), "invalid flag `-q'");
}

TEST(Flags, WhatStoodBeforeABadWordStaysAndWhatFollowsIsNotApplied) {
  Settings settings;

  EXPECT_EQ(complaintAbout({"-d", "proj", "-o", "-q", "-s"}, settings),
            "in COMMAND LINE: invalid flag `-q'");

  EXPECT_EQ(settings.dataDir, "proj/");
  EXPECT_TRUE(settings.overwrite);
  EXPECT_TRUE(settings.stripExtensions);
}

TEST(Flags, AListFlagWithoutArgumentHasAlreadyClearedTheListFile) {
  Settings settings;

  complaintAbout({"-l", "names", "-l"}, settings);

  EXPECT_EQ(settings.listFile_, "");
}

TEST(Flags, ADirectoryFlagWithoutArgumentKeepsTheDataDirectory) {
  Settings settings;

  complaintAbout({"-d", "proj", "-d"}, settings);

  EXPECT_EQ(settings.dataDir, "proj/");
}

}  // namespace
