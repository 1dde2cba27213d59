#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

// Writes `name` + ".gz", packed by the system's gzip, and returns the path without the ".gz".
Tessaly::String writePacked(const ScratchFolder& folder, const std::string& name,
                            const std::string& content) {
  const Tessaly::String path = folder.write(name, content);
  const std::string command  = "gzip " + standardText(path);
  EXPECT_EQ(std::system(command.c_str()), 0);
  return path;
}

std::vector<std::string> namesIn(const ScratchFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

void writeCommand(const ScratchFolder& folder, const std::string& name, const std::string& script) {
  const Tessaly::String path = folder.write(name, "#!/bin/sh\n" + script);
  std::filesystem::permissions(path.text(), std::filesystem::perms::owner_all);
}

using Names = std::vector<std::string>;

TEST(TraceOpen, ContentDecidesWhateverTheExtension) {
  const ScratchFolder folder;

  for (const char* name : {"one.ab1", "one.scf", "one.txt", "one"})
    EXPECT_TRUE(openPath(folder.write(name, AbifBuilder().build())).read) << name;
}

TEST(TraceOpen, ANameEndingInGzIsUnpackedReadAndRemovedAndLosesItsGz) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one.ab1", AbifBuilder().build());
  Tessaly::String name       = path + ".gz";
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_TRUE(read);
  EXPECT_EQ(trace.status(), 0);
  EXPECT_EQ(name, path);
  EXPECT_EQ(trace.baseCount(), 4u);
  EXPECT_EQ(namesIn(folder), Names{"one.ab1.gz"});
}

TEST(TraceOpen, ANameFoundThroughAnAppendedGzIsUnpackedAndStaysAsItIs) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one.ab1", AbifBuilder().build());
  Tessaly::String name       = path;
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_TRUE(read);
  EXPECT_EQ(trace.status(), 0);
  EXPECT_EQ(name, path);
  EXPECT_EQ(trace.baseCount(), 4u);
  EXPECT_EQ(namesIn(folder), Names{"one.ab1.gz"});
}

TEST(TraceOpen, ThePlainFileIsPreferredToThePackedOne) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one", AbifBuilder().bases("AAAAA").build());
  folder.write("one", AbifBuilder().bases("CCCCC").build());

  EXPECT_EQ(openPath(path).bases, "CCCCC");
  EXPECT_EQ(openPath(path + ".gz").bases, "AAAAA");
}

TEST(TraceOpen, AFileThatIsNotThereGivesStatus1AndRunsNothing) {
  const ScratchFolder folder;
  Tessaly::String name = folder.at("one");
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_FALSE(read);
  EXPECT_EQ(trace.status(), 1);
  EXPECT_EQ(name, folder.at("one"));
  EXPECT_EQ(namesIn(folder), Names{});
}

TEST(TraceOpen, AMissingFileWithTheNameOfAPackedOneGivesStatus2) {
  const ScratchFolder folder;
  Tessaly::String name = folder.at("one.gz");
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_FALSE(read);
  EXPECT_EQ(trace.status(), 2);
  EXPECT_EQ(name, folder.at("one"));
  EXPECT_EQ(namesIn(folder), Names{});
}

TEST(TraceOpen, APackedFileThatIsNoGzipDataGivesStatus2AndLeavesNothing) {
  const ScratchFolder folder;

  const OpenedTrace opened = openPath(folder.write("one.gz", "not packed at all"));

  EXPECT_FALSE(opened.read);
  EXPECT_EQ(opened.status, 2);
  EXPECT_EQ(namesIn(folder), Names{"one.gz"});
}

TEST(TraceOpen, TheUnpackedFileIsRemovedAfterAReaderFailed) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one", AbifBuilder().without("FWO_", 1).build());

  const OpenedTrace opened = openPath(path);

  EXPECT_EQ(opened.status, 2);
  EXPECT_EQ(namesIn(folder), Names{"one.gz"});
}

TEST(TraceOpen, TheUnpackedFileIsRemovedWhenItIsNoTrace) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one", "no trace");

  const OpenedTrace opened = openPath(path);

  EXPECT_EQ(opened.status, 2);
  EXPECT_EQ(namesIn(folder), Names{"one.gz"});
}

TEST(TraceOpen, ANameThatIsExactlyGzIsAPlainOne) {
  const ScratchFolder folder;  // also the working directory
  Tessaly::String name(".gz");
  Quillet::TraceFile missing, present;

  EXPECT_FALSE(missing.open(name));
  EXPECT_EQ(missing.status(), 1);
  EXPECT_EQ(name, ".gz");

  folder.write(".gz", AbifBuilder().build());
  EXPECT_TRUE(present.open(name));
  EXPECT_EQ(name, ".gz");
}

TEST(TraceOpen, AFolderNamedLikeATraceGivesStatus2) {
  const ScratchFolder folder;
  folder.makeFolder("one.ab1");
  folder.makeFolder("two.ab1.gz");

  EXPECT_EQ(openPath(folder.at("one.ab1")).status, 2);
  EXPECT_EQ(openPath(folder.at("two.ab1")).status, 2);
  EXPECT_EQ(namesIn(folder), (Names{"one.ab1", "two.ab1.gz"}));
}

TEST(TraceOpen, APipeIsNotWaitedForAndGivesStatus2) {
  const ScratchFolder folder;
  ASSERT_EQ(mkfifo(folder.at("pipe.ab1").text(), 0600), 0);

  EXPECT_EQ(openPath(folder.at("pipe.ab1")).status, 2);
}

TEST(TraceOpen, WhatBeginsLikeNoTraceGivesStatus2) {
  const std::string trace = AbifBuilder().build();
  for (const std::string& content :
       {std::string(), std::string("A"), std::string("abif"), std::string("ABI"),
        std::string("fcs."), std::string(128, '#'), std::string(128, '#') + "ABI",
        std::string(128, '#') + ".scf", std::string(127, '#') + trace,
        std::string(129, '#') + trace, ' ' + trace}) {
    const OpenedTrace opened = openBytes(content);

    EXPECT_FALSE(opened.read) << content.substr(0, 8) << " of " << content.size();
    EXPECT_EQ(opened.status, 2);
  }
}

TEST(TraceOpen, ATraceBehindAHeaderOf128BytesIsRead) {
  const OpenedTrace opened = openBytes(AbifBuilder().prefix(128).build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.status, 0);
  EXPECT_EQ(opened.bases, "ACGT");
  EXPECT_EQ(opened.a, risingFrom(100));
}

TEST(TraceOpen, ThePackedFileIsUnpackedIntoTheTemporaryNameAndThatIsRemoved) {
  const ScratchFolder folder;  // given commands that only tell how they were called
  writeCommand(folder, "bin/gunzip", "echo gunzip \"$@\" >> log\necho unpacked\n");
  writeCommand(folder, "bin/rm", "echo rm \"$@\" >> log\n");
  const std::string path = (folder.path() / "bin").string() + ":" + std::getenv("PATH");
  const EnvironmentVariable searchPath("PATH", path.c_str());
  Tessaly::String name("one.gz");
  Quillet::TraceFile trace;

  trace.open(name);  // when

  const std::string temporary = standardText(trace.tempName());  // then
  EXPECT_EQ(folder.read("log"), "gunzip -c -f one.gz\nrm " + temporary + "\n");
  EXPECT_EQ(folder.read(temporary), "unpacked\n");
}

TEST(TraceOpen, NamesReachTheShellUnquoted) {
  const ScratchFolder folder;
  Tessaly::String name("none; echo ran > proof; true .gz");
  Quillet::TraceFile trace;

  trace.open(name);

  EXPECT_EQ(folder.read("proof"), "ran\n");
  EXPECT_EQ(name, "none; echo ran > proof; true ");
  EXPECT_EQ(namesIn(folder), Names{"proof"});
}

}  // namespace
