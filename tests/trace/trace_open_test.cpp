#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/support/captured_stderr.h"
#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"
#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

/// Writes `name` + ".gz", packed by the system's gzip, and returns the path without the ".gz".
Tessaly::String writePacked(const ScratchFolder& folder, const std::string& name,
                            const std::string& content) {
  const Tessaly::String path = folder.write(name, content);
  const std::string command = "gzip " + textOf(path);
  EXPECT_EQ(std::system(command.c_str()), 0);
  return path;
}

std::vector<std::string> namesIn(const ScratchFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Replaces gunzip and rm by scripts that write their arguments to the file "log" of the working
/// directory.
class LoggedCommands {
 public:
  /// `gunzip` and `rm` are further lines of the scripts.
  explicit LoggedCommands(const ScratchFolder& folder, const std::string& gunzip = "",
                          const std::string& rm = "")
      : searchPath_("PATH", searchPath(folder).c_str()) {
    write(folder, "gunzip", gunzip);
    write(folder, "rm", rm);
  }

 private:
  static std::string searchPath(const ScratchFolder& folder) {
    return (folder.path() / "bin").string() + ":" + std::getenv("PATH");
  }
  static void write(const ScratchFolder& folder, const std::string& name,
                    const std::string& script) {
    const std::string log = "#!/bin/sh\necho " + name + " \"$@\" >> log\n";
    const Tessaly::String path = folder.write("bin/" + name, log + script);
    std::filesystem::permissions(path.text(), std::filesystem::perms::owner_all);
  }

  EnvironmentVariable searchPath_;
};

using Names = std::vector<std::string>;

TEST(TraceOpen, ContentDecidesWhateverTheExtension) {
  const ScratchFolder folder;

  for (const char* name : {"one.ab1", "one.scf", "one.txt", "one"}) {
    EXPECT_TRUE(openPath(folder.write(name, AbifBuilder().build())).read) << name;
  }
}

TEST(TraceOpen, ANameEndingInGzIsUnpackedReadAndRemovedAndLosesItsGz) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one.ab1", AbifBuilder().build());
  Tessaly::String name = path + ".gz";
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
  Tessaly::String name = path;
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_TRUE(read);
  EXPECT_EQ(trace.status(), 0);
  EXPECT_EQ(name, path);
  EXPECT_EQ(trace.baseCount(), 4u);
  EXPECT_EQ(namesIn(folder), Names{"one.ab1.gz"});
}

TEST(TraceOpen, AGzIsAlsoAppendedToANameInADirectory) {
  const ScratchFolder folder;
  writePacked(folder, "traces/one.ab1", AbifBuilder().build());
  Tessaly::String name("one.ab1");
  Quillet::TraceFile trace;
  trace.setDirectory("traces");

  const bool read = trace.open(name);

  EXPECT_TRUE(read);
  EXPECT_EQ(name, "one.ab1");
  EXPECT_EQ(trace.baseCount(), 4u);
}

TEST(TraceOpen, ThePlainFileIsPreferredToThePackedOne) {
  const ScratchFolder folder;
  const Tessaly::String path = writePacked(folder, "one", AbifBuilder().bases("AAAAA").build());
  folder.write("one", AbifBuilder().bases("CCCCC").build());

  EXPECT_EQ(openPath(path).bases, "CCCCC");
  EXPECT_EQ(openPath(path + ".gz").bases, "AAAAA");
}

TEST(TraceOpen, APlainTraceNamedLikeAPackedOneIsReadSinceGunzipPassesItThrough) {
  const ScratchFolder folder;
  folder.write("one.gz", AbifBuilder().bases("GATTACA").build());
  Tessaly::String name = folder.at("one.gz");
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_TRUE(read);
  EXPECT_EQ(trace.status(), 0);
  EXPECT_EQ(name, folder.at("one"));
  EXPECT_EQ(openPath(folder.at("one")).bases, "GATTACA");
  EXPECT_EQ(openPath(folder.at("one.gz")).bases, "GATTACA");
  EXPECT_EQ(namesIn(folder), Names{"one.gz"});
}

TEST(TraceOpen, AFileThatIsNotThereGivesStatus1AndRunsNothing) {
  const ScratchFolder folder;
  const LoggedCommands commands(folder);
  Tessaly::String name = folder.at("one");
  Quillet::TraceFile trace;

  const bool read = trace.open(name);

  EXPECT_FALSE(read);
  EXPECT_EQ(trace.status(), 1);
  EXPECT_EQ(name, folder.at("one"));
  EXPECT_EQ(namesIn(folder), Names{"bin"});  // no log
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

TEST(TraceOpen, ANameThatIsExactlyGzIsAPlainOneInADirectoryToo) {
  const ScratchFolder folder;
  const LoggedCommands commands(folder);
  Tessaly::String name(".gz");
  Quillet::TraceFile missing, present;
  missing.setDirectory("traces");
  present.setDirectory("traces");

  EXPECT_FALSE(missing.open(name));
  EXPECT_EQ(missing.status(), 1);
  EXPECT_EQ(name, ".gz");

  folder.write("traces/.gz", AbifBuilder().build());
  EXPECT_TRUE(present.open(name));
  EXPECT_EQ(name, ".gz");
  EXPECT_FALSE(folder.has("log"));
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

TEST(TraceOpen, AMagicThatDiffersInOneCharacterGivesStatus2) {
  const struct {
    std::string trace;
    std::size_t magic;  // its position
  } cases[] = {{AbifBuilder().build(), 0},
               {ScfBuilder().build(), 0},
               {AbifBuilder().prefix(128).build(), 128}};
  for (const auto& row : cases) {
    ASSERT_TRUE(openBytes(row.trace).read);
    for (std::size_t place = row.magic; place < row.magic + 4; ++place) {
      std::string other = row.trace;
      other[place] = static_cast<char>(other[place] + 1);

      EXPECT_EQ(openBytes(other).status, 2) << other.substr(row.magic, 4);
    }
  }
}

TEST(TraceOpen, ATraceAfterAHeaderOf128BytesIsRead) {
  const OpenedTrace opened = openBytes(AbifBuilder().prefix(128).build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.status, 0);
  EXPECT_EQ(opened.bases, "ACGT");
  EXPECT_EQ(opened.a, risingFrom(100));
}

TEST(TraceOpen, ThePackedFileIsUnpackedIntoTheTemporaryNameAndThatIsRemoved) {
  const ScratchFolder folder;  // given
  const LoggedCommands commands(folder, "echo unpacked\n");
  Tessaly::String name("one.gz");
  Quillet::TraceFile trace;

  trace.open(name);  // when

  const std::string temporary = textOf(trace.tempName());  // then
  EXPECT_EQ(folder.read("log"), "gunzip -c -f one.gz\nrm " + temporary + "\n");
  EXPECT_EQ(folder.read(temporary), "unpacked\n");
}

TEST(TraceOpen, TheDirectoryGetsASlashOnlyWhereItLacksOne) {
  struct Case {
    const char* directory;
    std::string path;
  };
  for (const Case& one :
       {Case{"traces", "traces/one.gz"}, Case{"traces/", "traces/one.gz"},
        Case{"traces//", "traces//one.gz"}, Case{"/", "/one.gz"}, Case{"", "/one.gz"}}) {
    const ScratchFolder folder;
    const LoggedCommands commands(folder);
    Tessaly::String name("one.gz");
    Quillet::TraceFile trace;
    trace.setDirectory(one.directory);

    trace.open(name);

    EXPECT_TRUE(folder.read("log").starts_with("gunzip -c -f " + one.path + "\n"))
        << one.directory << ": " << folder.read("log");
  }
}

TEST(TraceOpen, TheExitStatusOfGunzipIsNotLookedAt) {
  const ScratchFolder folder;
  folder.write("plain", AbifBuilder().bases("GATTACA").build());
  const LoggedCommands commands(folder, "cat plain\nexit 1\n");

  const OpenedTrace opened = openPath("one.gz");

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.status, 0);
  EXPECT_EQ(opened.bases, "GATTACA");
}

TEST(TraceOpen, ComplaintsOfTheCommandsGoToTheErrorStream) {
  const ScratchFolder folder;
  const LoggedCommands commands(folder, "echo from gunzip >&2\n", "echo from rm >&2\n");
  const CapturedStderr err;

  openPath("one.gz");

  EXPECT_EQ(err.text(), "from gunzip\nfrom rm\n");
}

TEST(TraceOpen, TheFileIsClosedWhetherOrNotItWasRead) {
  struct Case {
    std::string content;
    std::int32_t status;
  };
  const ScratchFolder folder;
  for (const Case& one : {Case{AbifBuilder().build(), 0}, Case{ScfBuilder().build(), 0},
                          Case{AbifBuilder().without("FWO_", 1).build(), 2}, Case{"no trace", 2}}) {
    Tessaly::String plain = folder.write("one", one.content);
    Tessaly::String gz = folder.write("two.gz", one.content);
    for (Tessaly::String* name : {&plain, &gz}) {
      Quillet::TraceFile trace;

      trace.open(*name);

      EXPECT_EQ(trace.status(), one.status) << *name;
      EXPECT_FALSE(trace.is_open()) << *name;
    }
  }
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
