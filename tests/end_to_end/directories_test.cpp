#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/project_folder.h"

namespace {

namespace fs = std::filesystem;

/// A project in the folder "p" of the user's folder, which is HOME.
class Directories : public ::testing::Test {
 protected:
  Directories() {
    for (const char* name : {"chromat_dir", "edit_dir", "phd_dir", "poly_dir"}) {
      folder_.makeFolder(std::string("p/") + name);
    }
  }

  ~Directories() override {
    for (const std::string& name : closed_) fs::permissions(at(name), fs::perms::owner_all);
  }

  std::string at(const std::string& name) const { return folder_.at(name).text(); }

  /// Gives `name` the permission bits until the end of the test.
  void setMode(const std::string& name, unsigned mode) {
    fs::permissions(at(name), static_cast<fs::perms>(mode));
    closed_.push_back(name);
  }

  ProgramRun runIn(const std::string& name, std::vector<std::string> arguments = {}) const {
    return {.folder = at(name),
            .arguments = std::move(arguments),
            .environment = {{"HOME", folder_.path().string()}}};
  }

  static void expectBatch(const ProgramRun& run) {
    const ProgramResult result = runQuillet(run);
    EXPECT_EQ(result.err, banner() + meterLines({0}));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 0);
  }

  static void expectReport(const ProgramRun& run, const std::string& report) {
    const ProgramResult result = runQuillet(run);
    EXPECT_EQ(result.err, banner() + "ERROR: " + report + "\n" + "\n\nQUILLET is terminating.\n\n");
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.status, 1);
  }

  ScratchFolder folder_;

 private:
  std::vector<std::string> closed_;
};

// The reverse order of the checks: each directory that a test damages is reported before the ones
// that it damaged earlier.
const char* const lastToFirst[] = {"p/poly_dir", "p/phd_dir", "p/chromat_dir", "p"};

TEST_F(Directories, TheFirstMissingOneIsReported) {
  for (const std::string name : lastToFirst) {
    fs::remove_all(at(name));

    expectReport({.folder = at("."), .arguments = {"-d", at("p")}},
                 "no such file or directory: " + at(name) + "/");
    EXPECT_FALSE(folder_.has(name));
  }
}

TEST_F(Directories, TheFirstThatIsAFileIsReported) {
  for (const std::string name : lastToFirst) {
    fs::remove_all(at(name));
    folder_.write(name, "a file");

    expectReport({.folder = at("."), .arguments = {"-d", at("p")}},
                 "no such file or directory: " + at(name) + "/");
  }
}

TEST_F(Directories, TheFirstThatItsOwnerMayNotReadIsReported) {
  for (const std::string name : lastToFirst) {
    setMode(name, 0377);

    expectReport({.folder = at("."), .arguments = {"-d", at("p")}},
                 "could not read directory: " + at(name) + "/");
  }
}

TEST_F(Directories, TheFirstOutputDirectoryThatItsOwnerMayNotWriteIsReported) {
  for (const std::string name : {"p/poly_dir", "p/phd_dir"}) {
    setMode(name, 0577);

    expectReport(runIn("p"), "could not write to directory: " + at(name) + "/");
  }
}

TEST_F(Directories, TheRootAndTheChromatDirectoryNeedNotBeWriteable) {
  setMode("p/chromat_dir", 0500);
  setMode("p", 0500);

  expectBatch(runIn("p"));
}

TEST_F(Directories, TheyAreCheckedBeforeTheListFileIsOpened) {
  fs::remove(at("p/poly_dir"));

  expectReport(runIn("p", {"-l", "missing.txt"}),
               "no such file or directory: " + at("p/poly_dir/"));
}

TEST_F(Directories, TheProgramMayBeStartedInTheRootOrInTheEditDirectory) {
  expectBatch(runIn("p"));
  expectBatch(runIn("p/edit_dir"));
}

TEST_F(Directories, TheProgramMayNotBeStartedInAnotherDirectoryOfTheProject) {
  expectReport(runIn("p/phd_dir"), "no such file or directory: " + at("p/phd_dir/chromat_dir/"));
}

TEST_F(Directories, TheDataDirectoryMayBeRelativeOrAbsoluteWithAndWithoutASlash) {
  folder_.makeFolder("elsewhere");
  expectBatch(runIn(".", {"-d", "p"}));
  expectBatch(runIn(".", {"-d", "p/"}));
  expectBatch(runIn(".", {"-dir", "p/edit_dir"}));
  expectBatch(runIn("elsewhere", {"-d", "../p"}));
  expectBatch(runIn("elsewhere", {"-d", at("p")}));
  expectBatch(runIn("elsewhere", {"-d", at("p/")}));
  expectBatch(runIn("p", {"-d", ""}));
}

TEST_F(Directories, TheDataDirectoryIsReportedAsItWasResolved) {
  folder_.makeFolder("w/edit_dir");
  const struct {
    const char* place;
    std::string given;
    std::string reported;
  } cases[] = {
      {"w", "proj", at("w/proj/")},
      {"w", "proj/", at("w/proj/")},
      {"w", "./../proj", at("w/") + "./../proj/"},
      {"w", "proj/edit_dir", at("w/proj/")},
      {"w", "proj/edit_dir/", at("w/proj/")},
      {"w", at("proj/edit_dir"), at("proj/edit_dir/")},
      {"w", "my_edit_dir", at("w/my_")},
      {"w/edit_dir", "proj", at("w/edit_dir/proj/")},
  };
  for (const auto& row : cases) {
    expectReport(runIn(row.place, {"-d", row.given}), "no such file or directory: " + row.reported);
  }
}

TEST_F(Directories, PwdIsBelievedEvenWhenItIsWrong) {
  folder_.makeFolder("elsewhere");
  ProgramRun run = runIn("elsewhere");
  run.environment["PWD"] = at("p");
  expectBatch(run);

  run = runIn("p");
  run.environment["PWD"] = at("nowhere");
  expectReport(run, "no such file or directory: " + at("nowhere/"));

  run = runIn(".");
  run.environment["PWD"] = "p";  // relative to the working directory
  expectBatch(run);
}

TEST_F(Directories, WithoutPwdTheSystemSaysWhereTheProgramStands) {
  ProgramRun run = runIn("p/edit_dir");
  run.unset = {"PWD"};
  expectBatch(run);

  run = runIn("p");
  run.environment["PWD"] = "";
  expectBatch(run);

  run = runIn("p/phd_dir");
  run.unset = {"PWD"};
  expectReport(run, "no such file or directory: " + at("p/phd_dir/chromat_dir/"));
}

TEST_F(Directories, AWorkingDirectoryThatIsGoneBecomesTheRootDirectoryAfterAWarning) {
  if (fs::exists("/chromat_dir") || fs::exists("/.quilletrc")) GTEST_SKIP() << "used otherwise";
  folder_.makeFolder("gone");
  const std::string script =
      "rmdir ../gone; unset PWD; exec '" + std::string(QUILLET_PROGRAM) + "'";
  ProgramRun run = runIn("gone");
  run.arguments = {"-c", script};

  const ProgramResult result = runProgram("sh", run);

  // Once for the resource file and once for the project; 2 is ENOENT.
  EXPECT_EQ(result.err, banner() +
                            "Warning: getpwd failed: 2\n"
                            "Warning: getpwd failed: 2\n"
                            "ERROR: no such file or directory: /chromat_dir/\n"
                            "\n\nQUILLET is terminating.\n\n");
  EXPECT_EQ(result.status, 1);
}

}  // namespace
