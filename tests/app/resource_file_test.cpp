#include "app/resource_file.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "app/flags.h"
#include "app/parse_error.h"
#include "tests/support/captured_stderr.h"
#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"

namespace {

using namespace std::string_literals;
using Quillet::Settings;

/// A user's environment: PWD is the folder "work", HOME is "home", TESSALY_PATH is not set.
///
/// The working directory is the scratch folder and not PWD, so that a relative name and a name made
/// from PWD are different files.
class ResourceFile : public ::testing::Test {
 protected:
  ResourceFile() {
    folder_.makeFolder("work");
    folder_.makeFolder("home");
  }

  std::string at(const std::string& name) const { return folder_.at(name).text(); }

  /// Reads the user's defaults into `settings_`, and the text of a ParseError into `complaint_`.
  void read() {
    const CapturedStderr captured;
    try {
      Quillet::readResourceFile(settings_);
    } catch (const Tessaly::ParseError& error) {
      complaint_ = error.what();
    }
    printed_ = captured.text();
  }

  /// The same with `lines` in the working directory's file.
  void readLines(const std::string& lines) {
    folder_.write("work/.quilletrc", lines);
    read();
  }

  /// The start of the text of an error in the working directory's file.
  std::string inLine(int number) const {
    return "in " + at("work/.quilletrc") + "line " + std::to_string(number) + ": ";
  }

  void expectDefaults() const {
    const Settings defaults;
    EXPECT_EQ(settings_.dataDir, defaults.dataDir);
    EXPECT_EQ(settings_.chromatDir, defaults.chromatDir);
    EXPECT_EQ(settings_.editDir, defaults.editDir);
    EXPECT_EQ(settings_.phdDir, defaults.phdDir);
    EXPECT_EQ(settings_.polyDir, defaults.polyDir);
    EXPECT_EQ(settings_.listFile_, defaults.listFile_);
    EXPECT_EQ(settings_.overwrite, defaults.overwrite);
    EXPECT_EQ(settings_.stripExtensions, defaults.stripExtensions);
  }

  ScratchFolder folder_;
  EnvironmentVariable pwd_{"PWD", at("work").c_str()};
  EnvironmentVariable home_{"HOME", at("home").c_str()};
  EnvironmentVariable prefix_{"TESSALY_PATH", nullptr};
  Settings settings_;
  std::string printed_;    // on the standard error stream
  std::string complaint_;  // text of the ParseError, empty when none was thrown
};

// Where the program looks for the file.

TEST_F(ResourceFile, AMissingFileIsSilentAndChangesNothing) {
  read();

  EXPECT_EQ(printed_, "");
  EXPECT_EQ(complaint_, "");
  expectDefaults();
}

TEST_F(ResourceFile, TheWorkingDirectorysFileIsReadAndNotTheHomeDirectorys) {
  folder_.write("work/.quilletrc", "phddir work_out\n");
  folder_.write("home/.quilletrc", "phddir home_out\npolydir home_out\n");

  read();

  EXPECT_EQ(printed_, "Reading file " + at("work/.quilletrc") + "\n");
  EXPECT_EQ(settings_.phdDir, "work_out/");
  EXPECT_EQ(settings_.polyDir, "poly_dir/");
}

TEST_F(ResourceFile, ReadSilentlyItCountsAndIsNotNamed) {
  folder_.write("work/.quilletrc", "phddir work_out\nflag -s\n");

  const CapturedStderr captured;
  Quillet::readResourceFileSilently(settings_);

  EXPECT_EQ(captured.text(), "");
  EXPECT_EQ(settings_.phdDir, "work_out/");
  EXPECT_FALSE(settings_.stripExtensions);
}

TEST_F(ResourceFile, ReadSilentlyItsBadLinesAreErrorsAllTheSame) {
  folder_.write("work/.quilletrc", "# comment\n");

  try {
    Quillet::readResourceFileSilently(settings_);
    FAIL() << "nothing was thrown";
  } catch (const Tessaly::ParseError& error) {
    EXPECT_EQ(error.what(), inLine(1) + "invalid option: #");
  }
}

TEST_F(ResourceFile, TheHomeDirectorysFileIsReadAndNotThePrefixes) {
  folder_.write("home/.quilletrc", "phddir home_out\n");
  folder_.write("etc/.quilletrc", "polydir etc_out\n");
  const EnvironmentVariable prefix("TESSALY_PATH", at("etc/").c_str());

  read();

  EXPECT_EQ(printed_, "Reading file " + at("home/.quilletrc") + "\n");
  EXPECT_EQ(settings_.phdDir, "home_out/");
  EXPECT_EQ(settings_.polyDir, "poly_dir/");
}

TEST_F(ResourceFile, TessalyPathIsAPrefixWithoutASlashOfItsOwn) {
  folder_.write("etc/cfg.quilletrc", "phddir beside\n");
  folder_.write("etc/cfg/.quilletrc", "phddir inside\n");
  const EnvironmentVariable prefix("TESSALY_PATH", at("etc/cfg").c_str());

  read();

  EXPECT_EQ(printed_, "Reading file " + at("etc/cfg.quilletrc") + "\n");
  EXPECT_EQ(settings_.phdDir, "beside/");
}

TEST_F(ResourceFile, TessalyPathThatEndsInASlashNamesADirectory) {
  folder_.write("etc/cfg.quilletrc", "phddir beside\n");
  folder_.write("etc/cfg/.quilletrc", "phddir inside\n");
  const EnvironmentVariable prefix("TESSALY_PATH", at("etc/cfg/").c_str());

  read();

  EXPECT_EQ(printed_, "Reading file " + at("etc/cfg/.quilletrc") + "\n");
  EXPECT_EQ(settings_.phdDir, "inside/");
}

TEST_F(ResourceFile, AnEmptyTessalyPathIsNoPrefix) {
  folder_.write(".quilletrc", "phddir bare\n");
  const EnvironmentVariable prefix("TESSALY_PATH", "");

  read();

  EXPECT_EQ(printed_, "");
  expectDefaults();
}

TEST_F(ResourceFile, WithoutHomeTheSecondCandidateIsTheBareName) {
  folder_.write(".quilletrc", "phddir bare\n");
  const EnvironmentVariable home("HOME", nullptr);

  read();

  EXPECT_EQ(printed_, "Reading file .quilletrc\n");
  EXPECT_EQ(settings_.phdDir, "bare/");
}

TEST_F(ResourceFile, WithAnEmptyHomeTheSecondCandidateLiesInTheRootDirectory) {
  if (std::filesystem::exists("/.quilletrc")) GTEST_SKIP() << "this machine has such a file";
  folder_.write(".quilletrc", "phddir bare\n");
  const EnvironmentVariable home("HOME", "");

  read();

  EXPECT_EQ(printed_, "");
  expectDefaults();
}

TEST_F(ResourceFile, HomeThatEndsInASlashGetsNoSecondOne) {
  folder_.write("home/.quilletrc", "");
  const EnvironmentVariable home("HOME", at("home/").c_str());

  read();

  EXPECT_EQ(printed_, "Reading file " + at("home/.quilletrc") + "\n");
}

TEST_F(ResourceFile, PwdIsBelievedAgainstTheProcessesOwnDirectory) {
  folder_.write(".quilletrc", "phddir own\n");
  folder_.write("work/.quilletrc", "phddir believed\n");

  read();

  EXPECT_EQ(settings_.phdDir, "believed/");
}

TEST_F(ResourceFile, WithoutPwdTheProcessesOwnDirectoryCounts) {
  folder_.write(".quilletrc", "phddir own\n");
  for (const char* value : {static_cast<const char*>(nullptr), ""}) {
    const EnvironmentVariable pwd("PWD", value);
    settings_ = Settings();

    read();

    EXPECT_EQ(printed_, "Reading file " + at(".quilletrc") + "\n");
    EXPECT_EQ(settings_.phdDir, "own/");
  }
}

TEST_F(ResourceFile, ACandidateThatCanNotBeOpenedIsPassedOver) {
  std::filesystem::create_symlink(".quilletrc", at("work/.quilletrc"));  // a link to itself
  folder_.write("home/.quilletrc", "phddir home_out\n");

  read();

  EXPECT_EQ(printed_, "Reading file " + at("home/.quilletrc") + "\n");
  EXPECT_EQ(settings_.phdDir, "home_out/");
}

TEST_F(ResourceFile, ADirectoryOfThatNameOpensAndHoldsNoLines) {
  folder_.makeFolder("work/.quilletrc");
  folder_.write("home/.quilletrc", "phddir home_out\n");

  read();

  EXPECT_EQ(printed_, "Reading file " + at("work/.quilletrc") + "\n");
  EXPECT_EQ(complaint_, "");
  expectDefaults();
}

// Lines that are understood.

TEST_F(ResourceFile, EachDirectoryKeywordSetsItsOwnDirectory) {
  readLines("chromatdir traces\nphddir /data/phd\npolydir poly/\n");

  EXPECT_EQ(settings_.chromatDir, "traces/");
  EXPECT_EQ(settings_.phdDir, "/data/phd/");
  EXPECT_EQ(settings_.polyDir, "poly/");
  EXPECT_EQ(settings_.dataDir, "");
  EXPECT_EQ(settings_.editDir, "edit_dir/");
}

TEST_F(ResourceFile, ADirectoryGetsATrailingSlashUnlessItHasOne) {
  const struct {
    const char* line;
    const char* expected;
  } cases[] = {
      {"polydir out", "out/"},  {"polydir out/", "out/"}, {"polydir /", "/"},
      {"polydir a/b", "a/b/"},  {"polydir -o", "-o/"},    {"polydir #", "#/"},
      {"polydir 'a b'", "'a/"},
  };
  for (const auto& row : cases) {
    readLines(row.line);
    EXPECT_EQ(settings_.polyDir, row.expected) << row.line;
  }
}

TEST_F(ResourceFile, AWordEndsAtItsFirstZeroByte) {
  readLines("phddir\0x out\0x/\0\nflag -d\0 proj\0 -o\0o\nchromatdir traces/\0x\n"s);

  EXPECT_EQ(complaint_, "");
  EXPECT_EQ(settings_.phdDir, "out/");
  EXPECT_EQ(settings_.dataDir, "proj/");
  EXPECT_TRUE(settings_.overwrite);
  EXPECT_EQ(settings_.chromatDir, "traces/");
}

TEST_F(ResourceFile, AWordThatBeginsWithAZeroByteIsAnEmptyWord) {
  readLines("phddir \0out\n"s);

  EXPECT_EQ(complaint_, "");
  EXPECT_EQ(settings_.phdDir, "");

  readLines("\0phddir out\n"s);

  EXPECT_EQ(complaint_, inLine(1) + "invalid option: ");
}

TEST_F(ResourceFile, WordsAfterADirectoryAreIgnored) {
  readLines("phddir out flag -o\nchromatdir in # a remark\npolydir p q\n");

  EXPECT_EQ(complaint_, "");
  EXPECT_EQ(settings_.phdDir, "out/");
  EXPECT_EQ(settings_.chromatDir, "in/");
  EXPECT_EQ(settings_.polyDir, "p/");
  EXPECT_FALSE(settings_.overwrite);
}

TEST_F(ResourceFile, ALaterLineForTheSameDirectoryWins) {
  readLines("phddir first\nphddir second\nphddir third\n");

  EXPECT_EQ(settings_.phdDir, "third/");
}

TEST_F(ResourceFile, TheLastLineNeedsNoLineEnd) {
  readLines("phddir out\nflag -o");

  EXPECT_EQ(settings_.phdDir, "out/");
  EXPECT_TRUE(settings_.overwrite);
}

TEST_F(ResourceFile, AnyWhiteSpaceSeparatesWordsAndSurroundsThem) {
  readLines(" \tphddir\t\vout\f\r\n\r\nflag \t-o\r\n");

  EXPECT_EQ(complaint_, "");
  EXPECT_EQ(settings_.phdDir, "out/");
  EXPECT_TRUE(settings_.overwrite);
}

TEST_F(ResourceFile, AnEmptyFileIsReadAndChangesNothing) {
  readLines("");

  EXPECT_EQ(printed_, "Reading file " + at("work/.quilletrc") + "\n");
  expectDefaults();
}

TEST_F(ResourceFile, AFlagLineWithoutWordsAddsNothing) {
  readLines("flag\n  flag  \n");

  EXPECT_EQ(complaint_, "");
  expectDefaults();
}

TEST_F(ResourceFile, AFlagLineHoldsAnyNumberOfFlags) {
  readLines("flag -s -d proj -overwrite\n");

  EXPECT_FALSE(settings_.stripExtensions);
  EXPECT_EQ(settings_.dataDir, "proj/");
  EXPECT_TRUE(settings_.overwrite);
}

TEST_F(ResourceFile, TheWordsOfAllFlagLinesAreAppliedTogetherInOrder) {
  readLines("flag -o\nphddir out\nflag -s\n");

  EXPECT_TRUE(settings_.overwrite);
  EXPECT_FALSE(settings_.stripExtensions);
}

TEST_F(ResourceFile, AFlagFindsItsArgumentOnTheNextFlagLine) {
  readLines("flag -d\nphddir out\nflag -o\nflag -l\n\nflag names\n");

  EXPECT_EQ(complaint_, "");
  EXPECT_EQ(settings_.dataDir, "-o/");
  EXPECT_EQ(settings_.listFile_, "names");
  EXPECT_FALSE(settings_.overwrite);
}

TEST_F(ResourceFile, TheCommandLineOverridesItsFlagsBecauseItIsAppliedLater) {
  readLines("flag -d from_file -l from_file\n");
  Quillet::applyFlags(settings_, {"-d", "typed", "-l", "typed"}, "COMMAND LINE");

  EXPECT_EQ(settings_.dataDir, "typed/");
  EXPECT_EQ(settings_.listFile_, "typed");
}

// Lines that are not understood.

TEST_F(ResourceFile, AnErrorInTheHomeDirectorysFileNamesThePathAndTheLine) {
  folder_.write("home/.quilletrc", "flag -o\n\npolydir out\nphddir\nflag -s\n");

  read();

  EXPECT_EQ(complaint_, "in " + at("home/.quilletrc") + "line 4: `phddir' requires an argument");
}

TEST_F(ResourceFile, ADirectoryKeywordRequiresAnArgument) {
  for (const std::string keyword : {"chromatdir", "phddir", "polydir"}) {
    for (const char* end : {"", "\n", " \t\n", "\r\n"}) {
      readLines(keyword + end);
      EXPECT_EQ(complaint_, inLine(1) + "`" + keyword + "' requires an argument");
    }
  }
  expectDefaults();
}

TEST_F(ResourceFile, AnyOtherFirstWordIsAnInvalidOption) {
  const char* words[] = {"Flag",   "FLAG",        "flags",   "fla",     "-o",       "chromat",
                         "PhdDir", "chromatdir/", "editdir", "datadir", "polydir:", "flag=-o"};
  for (const std::string word : words) {
    readLines(word + " out\n");
    EXPECT_EQ(complaint_, inLine(1) + "invalid option: " + word);
  }
  expectDefaults();
}

TEST_F(ResourceFile, ThereIsNoCommentSyntax) {
  for (const std::string word : {"#", "#phddir", "//", ";", "!"}) {
    readLines(word + " a remark\n");
    EXPECT_EQ(complaint_, inLine(1) + "invalid option: " + word);
  }
}

TEST_F(ResourceFile, LinesWithoutAWordAreSkippedButCounted) {
  readLines("\n \t \n\r\n\nphddir out\n\nwrong\n");

  EXPECT_EQ(complaint_, inLine(7) + "invalid option: wrong");
  EXPECT_EQ(settings_.phdDir, "out/");
}

TEST_F(ResourceFile, AMalformedLineKeepsEarlierDirectoriesAndDropsTheFlags) {
  readLines("flag -o -s -d proj\nphddir out\nwrong\npolydir late\nflag -l names\n");

  EXPECT_EQ(complaint_, inLine(3) + "invalid option: wrong");
  EXPECT_EQ(settings_.phdDir, "out/");
  EXPECT_EQ(settings_.polyDir, "poly_dir/");
  EXPECT_FALSE(settings_.overwrite);
  EXPECT_TRUE(settings_.stripExtensions);
  EXPECT_EQ(settings_.dataDir, "");
  EXPECT_EQ(settings_.listFile_, "");
}

TEST_F(ResourceFile, ABadFlagIsReportedUnderTheFilesLabelAfterAllLines) {
  readLines("flag -o -q -s\nphddir out\n");

  EXPECT_EQ(complaint_, "in .quilletrc file: invalid flag `-q'");
  EXPECT_EQ(settings_.phdDir, "out/");
  EXPECT_TRUE(settings_.overwrite);
  EXPECT_TRUE(settings_.stripExtensions);
}

TEST_F(ResourceFile, AFlagWithoutItsArgumentIsReportedUnderTheFilesLabel) {
  readLines("flag -o -dir\n");

  EXPECT_EQ(complaint_, "in .quilletrc file: `-dir' requires an argument.");
}

TEST_F(ResourceFile, ABadLineIsReportedBeforeABadFlagAboveIt) {
  readLines("flag -q\nwrong\n");

  EXPECT_EQ(complaint_, inLine(2) + "invalid option: wrong");
}

}  // namespace
