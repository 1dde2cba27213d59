#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/project_folder.h"

namespace {

const std::string terminating = "\n\nQUILLET is terminating.\n\n";

/// A project and the three places of its user's resource file: the project's folder itself, the
/// folder "home", and the folder "etc" that TESSALY_PATH names.
class ResourceRun : public ::testing::Test {
 protected:
  ResourceRun() { folder_.makeFolder("home"); }

  std::string at(const std::string& name) const { return folder_.at(name).text(); }

  ProgramResult run(std::vector<std::string> arguments = {},
                    std::map<std::string, std::string> changes = {}) const {
    changes.insert({{"HOME", at("home")}, {"TESSALY_PATH", at("etc/")}});
    return runQuillet({.folder = folder_.path().string(),
                       .arguments = std::move(arguments),
                       .environment = std::move(changes)});
  }

  /// The output of a run that reads `file` and converts nothing.
  std::string reading(const std::string& file) const {
    return banner() + "Reading file " + at(file) + "\n";
  }

  const std::vector<std::string> places_ = {".quilletrc", "home/.quilletrc", "etc/.quilletrc"};
  ProjectFolder folder_;
};

TEST_F(ResourceRun, AGoodFileIsNamedAndTheBatchGoesOn) {
  for (const std::string& place : places_) {
    folder_.write(place, "flag -o\n");

    const ProgramResult result = run();

    EXPECT_EQ(result.err, reading(place) + meterLines({0}));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
    std::filesystem::remove(at(place));
  }
}

TEST_F(ResourceRun, TheFirstOfTheThreePlacesCounts) {
  for (std::size_t first = 0; first < places_.size(); ++first) {
    for (std::size_t i = first; i < places_.size(); ++i) {
      folder_.write(places_[i], i == first ? "flag -o\n" : "wrong\n");
    }

    const ProgramResult result = run();

    EXPECT_EQ(result.err, reading(places_[first]) + meterLines({0}));
    EXPECT_EQ(result.status, 0);
    std::filesystem::remove(at(places_[first]));
  }
}

TEST_F(ResourceRun, EachBadLineIsReportedWithItsFileAndLineInEachPlace) {
  const struct {
    const char* lines;
    const char* complaint;
  } cases[] = {
      {"chromatdir\n", "line 1: `chromatdir' requires an argument"},
      {"phddir", "line 1: `phddir' requires an argument"},
      {"flag -o\npolydir \t \n", "line 2: `polydir' requires an argument"},
      {"\n \t\n\r\nphddir\n", "line 4: `phddir' requires an argument"},
      {"flag -q\nFlag -o\n", "line 2: invalid option: Flag"},
      {"phddir phd_dir\n# a remark\n", "line 2: invalid option: #"},
      {"\n\nchromat in\n", "line 3: invalid option: chromat"},
      {"editdir here\n", "line 1: invalid option: editdir"},
      {"-o\n", "line 1: invalid option: -o"},
  };
  for (const std::string& place : places_) {
    for (const auto& row : cases) {
      folder_.write(place, row.lines);

      const ProgramResult result = run();

      EXPECT_EQ(result.err,
                reading(place) + "ERROR: in " + at(place) + row.complaint + "\n" + terminating);
      EXPECT_EQ(result.out, "");
      EXPECT_EQ(result.status, 1);
    }
    std::filesystem::remove(at(place));
  }
}

TEST_F(ResourceRun, ABadFlagIsReportedUnderTheFilesLabelInEachPlace) {
  for (const std::string& place : places_) {
    folder_.write(place, "flag -o\nflag sample.ab1\n");

    const ProgramResult result = run();

    EXPECT_EQ(
        result.err,
        reading(place) + "ERROR: in .quilletrc file: invalid flag `sample.ab1'\n" + terminating);
    EXPECT_EQ(result.status, 1);
    std::filesystem::remove(at(place));
  }
}

TEST_F(ResourceRun, AFlagWithoutItsArgumentIsReportedInItsOwnSpelling) {
  for (const std::string word : {"-d", "-dir", "-l", "-list"}) {
    folder_.write(".quilletrc", "flag -o " + word + "\n");

    const ProgramResult result = run({"-d", ".", "-l", "-"});

    EXPECT_EQ(result.err, reading(".quilletrc") + "ERROR: in .quilletrc file: `" + word +
                              "' requires an argument.\n" + terminating);
    EXPECT_EQ(result.status, 1);
  }
}

TEST_F(ResourceRun, HelpAndVersionAmongItsFlagsDoNothing) {
  folder_.write(".quilletrc", "flag -h -help --help -version --version\n");

  const ProgramResult result = run();

  EXPECT_EQ(result.err, reading(".quilletrc") + meterLines({0}));
  EXPECT_EQ(result.status, 0);
}

TEST_F(ResourceRun, ItsDirectoriesAreTheOnesThatAreUsed) {
  folder_.write(".quilletrc", "chromatdir traces\nphddir phd_out/\npolydir " + at("poly_out"));
  folder_.write("traces/bad.ab1", "no trace");
  folder_.makeFolder("phd_out");
  folder_.makeFolder("poly_out");
  for (const char* unused : {"chromat_dir", "phd_dir", "poly_dir"}) {
    std::filesystem::remove(at(unused));
  }

  const ProgramResult result = run();

  EXPECT_EQ(result.err, reading(".quilletrc") + meterLines({0, 100}) +
                            "ERROR: invalid trace file " + at("traces/bad.ab1") + " - skipping.\n");
  EXPECT_EQ(result.status, 0);
}

TEST_F(ResourceRun, ADirectoryThatItNamesMustExist) {
  folder_.write(".quilletrc", "phddir first\nphddir second also ignored\n");

  const ProgramResult result = run();

  EXPECT_EQ(result.err, reading(".quilletrc") + "ERROR: no such file or directory: " +
                            at("second/") + "\n" + terminating);
  EXPECT_EQ(result.status, 1);
}

TEST_F(ResourceRun, TheCommandLineOverridesItsFlags) {
  folder_.write("names", "");
  folder_.write(".quilletrc", "flag -d nowhere\nflag -l missing.txt\n");

  const ProgramResult alone = run();
  const ProgramResult overridden = run({"-d", ".", "-l", "names"});

  EXPECT_EQ(alone.err, reading(".quilletrc") + "ERROR: no such file or directory: " +
                           at("nowhere/") + "\n" + terminating);
  EXPECT_EQ(alone.status, 1);
  EXPECT_EQ(overridden.err, reading(".quilletrc") + meterLines({0}));
  EXPECT_EQ(overridden.status, 0);
}

TEST_F(ResourceRun, ItsErrorsComeBeforeThoseOfTheCommandLine) {
  folder_.write(".quilletrc", "wrong\n");

  const ProgramResult result = run({"-v"});

  EXPECT_EQ(result.err, reading(".quilletrc") + "ERROR: in " + at(".quilletrc") +
                            "line 1: invalid option: wrong\n" + terminating);
  EXPECT_EQ(result.status, 1);
}

TEST_F(ResourceRun, LineEndsWithCarriageReturnsWork) {
  folder_.write(".quilletrc", "chromatdir other\r\n\r\nflag -l\r\nflag names\r\n");
  folder_.write("names", "");
  folder_.makeFolder("other");
  std::filesystem::remove(at("chromat_dir"));

  const ProgramResult result = run();

  EXPECT_EQ(result.err, reading(".quilletrc") + meterLines({0}));
  EXPECT_EQ(result.status, 0);
}

TEST_F(ResourceRun, ADirectoryOfThatNameIsReadAsAnEmptyFile) {
  folder_.makeFolder(".quilletrc");
  folder_.write("home/.quilletrc", "wrong\n");

  const ProgramResult result = run();

  EXPECT_EQ(result.err, reading(".quilletrc") + meterLines({0}));
  EXPECT_EQ(result.status, 0);
}

TEST_F(ResourceRun, TessalyPathIsAPrefixWithoutASlashOfItsOwn) {
  folder_.write("etc/cfg.quilletrc", "flag -o\n");
  folder_.write("etc/cfg/.quilletrc", "wrong\n");

  const ProgramResult result = run({}, {{"TESSALY_PATH", at("etc/cfg")}});

  EXPECT_EQ(result.err, reading("etc/cfg.quilletrc") + meterLines({0}));
  EXPECT_EQ(result.status, 0);
}

TEST_F(ResourceRun, WithoutHomeTheBareNameIsTried) {
  folder_.write("started_here/.quilletrc", "wrong\n");

  const ProgramResult result = runQuillet({.folder = at("started_here"),
                                           .environment = {{"PWD", folder_.path().string()}},
                                           .unset = {"HOME"}});

  EXPECT_EQ(result.err, banner() + "Reading file .quilletrc\n" +
                            "ERROR: in .quilletrcline 1: invalid option: wrong\n" + terminating);
  EXPECT_EQ(result.status, 1);
}

}  // namespace
