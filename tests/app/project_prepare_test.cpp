#include "app/project.h"

#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/captured_stderr.h"
#include "tests/support/environment.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

using Quillet::Project;
using Quillet::Settings;

/// A project in the folder "p", with all its directories.
class ProjectPrepare : public ::testing::Test {
 protected:
  ProjectPrepare() { makeProject("p"); }

  ~ProjectPrepare() override {
    for (const std::string& name : closed_) fs::permissions(at(name), fs::perms::owner_all);
  }

  void makeProject(const std::string& name) const {
    for (const char* directory : {"chromat_dir", "edit_dir", "phd_dir", "poly_dir"}) {
      folder_.makeFolder(name + "/" + directory);
    }
  }

  std::string at(const std::string& name) const { return folder_.at(name).text(); }

  void remove(const std::string& name) const { fs::remove_all(at(name)); }

  /// Gives `name` the permission bits until the end of the test.
  void setMode(const std::string& name, unsigned mode) {
    fs::permissions(at(name), static_cast<fs::perms>(mode));
    closed_.push_back(name);
  }

  /// Prepares the project as a program started in `place`, an absolute path.
  void prepareIn(const std::string& place, Quillet::ProjectUse use = Quillet::ProjectUse::write) {
    const EnvironmentVariable pwd("PWD", place.c_str());
    const CapturedStderr captured;
    project_ = std::make_unique<Project>(settings_);
    thrown_ = 0;
    try {
      project_->prepare(use);
    } catch (int number) {
      thrown_ = number;
    }
    printed_ = captured.text();
  }

  void expectRoot(const std::string& root) const {
    EXPECT_EQ(thrown_, 0);
    EXPECT_EQ(printed_, "");
    EXPECT_EQ(project_->rootDir().text(), root);
    EXPECT_EQ(project_->chromatPath().text(), root + "chromat_dir/");
    EXPECT_EQ(project_->phdPath().text(), root + "phd_dir/");
    EXPECT_EQ(project_->polyPath().text(), root + "poly_dir/");
  }

  void expectReport(const std::string& report) const {
    EXPECT_EQ(thrown_, 1);
    EXPECT_EQ(printed_, "ERROR: " + report + "\n");
  }

  ScratchFolder folder_;
  Settings settings_;
  std::unique_ptr<Project> project_;
  int thrown_ = 0;
  std::string printed_;  // on the standard error stream

 private:
  std::vector<std::string> closed_;
};

// The root.

TEST_F(ProjectPrepare, TheWorkingDirectoryIsTheRoot) {
  prepareIn(at("p"));

  expectRoot(at("p/"));
  EXPECT_EQ(project_->workingDir().text(), at("p/"));
}

TEST_F(ProjectPrepare, StartedInTheEditDirectoryTheParentIsTheRoot) {
  for (const char* place : {"p/edit_dir", "p/edit_dir/"}) {
    prepareIn(at(place));

    expectRoot(at("p/"));
    EXPECT_EQ(project_->workingDir().text(), at("p/edit_dir/"));
  }
}

TEST_F(ProjectPrepare, ARelativeDataDirectoryLiesUnderTheWorkingDirectory) {
  makeProject("w/proj");
  settings_.dataDir = "proj/";

  prepareIn(at("w"));

  expectRoot(at("w/proj/"));
}

TEST_F(ProjectPrepare, AnAbsoluteDataDirectoryIsTheRootWhateverTheWorkingDirectory) {
  settings_.dataDir = at("p/");
  for (const char* place : {"/", "/no/such/place", "/tmp/edit_dir"}) {
    prepareIn(place);
    expectRoot(at("p/"));
  }
}

TEST_F(ProjectPrepare, AnAbsoluteDataDirectoryKeepsTheNameOfTheEditDirectory) {
  makeProject("p/edit_dir");
  settings_.dataDir = at("p/edit_dir/");

  prepareIn(at("p"));

  expectRoot(at("p/edit_dir/"));
}

TEST_F(ProjectPrepare, ARelativeDataDirectoryLosesTheNameOfTheEditDirectory) {
  settings_.dataDir = "p/edit_dir/";

  prepareIn(folder_.path().string());

  expectRoot(at("p/"));
}

TEST_F(ProjectPrepare, TheEditDirectorysNameIsCutOffOnlyOnce) {
  makeProject("p/edit_dir");

  prepareIn(at("p/edit_dir/edit_dir"));

  expectRoot(at("p/edit_dir/"));
}

TEST_F(ProjectPrepare, InsideAFolderOfTheEditDirectoryNothingIsCutOff) {
  makeProject("p/edit_dir/deep");

  prepareIn(at("p/edit_dir/deep"));

  expectRoot(at("p/edit_dir/deep/"));
}

TEST_F(ProjectPrepare, AnAbsoluteEditDirectoryIsNoEnding) {
  makeProject("p/edit_dir");
  settings_.editDir = "/edit_dir/";

  prepareIn(at("p/edit_dir"));

  expectRoot(at("p/edit_dir/"));
}

TEST_F(ProjectPrepare, TheEndingIsComparedAsPlainText) {
  prepareIn(at("p/my_edit_dir"));

  expectReport("no such file or directory: " + at("p/my_"));
}

TEST_F(ProjectPrepare, ARootThatIsTheEditDirectorysNameBecomesEmpty) {
  makeProject("edit_dir");  // in the process's own directory, where a root "edit_dir/" would pass

  prepareIn("edit_dir");

  expectReport("no such file or directory: ");
}

TEST_F(ProjectPrepare, PathsAreKeptAsWritten) {
  settings_.dataDir = "..//./";

  prepareIn(at("p/edit_dir"));

  expectRoot(at("p/edit_dir/") + "..//./");
}

// The directories inside it.

TEST_F(ProjectPrepare, RelativeDirectoriesLieUnderTheRootAndAbsoluteOnesAnywhere) {
  folder_.makeFolder("elsewhere/phd");
  folder_.makeFolder("p/in/traces");
  settings_.chromatDir = "in/traces/";
  settings_.phdDir = at("elsewhere/phd/");

  prepareIn(at("p"));

  EXPECT_EQ(printed_, "");
  EXPECT_EQ(project_->chromatPath().text(), at("p/in/traces/"));
  EXPECT_EQ(project_->phdPath().text(), at("elsewhere/phd/"));
  EXPECT_EQ(project_->polyPath().text(), at("p/poly_dir/"));
}

TEST_F(ProjectPrepare, ADirectorySettingIsNotTakenForTheEditDirectory) {
  settings_.phdDir = "edit_dir/";

  prepareIn(at("p"));

  EXPECT_EQ(printed_, "");
  EXPECT_EQ(project_->phdPath().text(), at("p/edit_dir/"));
}

TEST_F(ProjectPrepare, AMissingPolyDirectoryIsReportedAfterTheOthersPassed) {
  remove("p/poly_dir");

  prepareIn(at("p"));

  expectReport("no such file or directory: " + at("p/poly_dir/"));
  EXPECT_EQ(project_->chromatPath().text(), at("p/chromat_dir/"));
  EXPECT_EQ(project_->phdPath().text(), at("p/phd_dir/"));
}

TEST_F(ProjectPrepare, ChecksStopAtTheFirstFailure) {
  for (const char* missing : {"p/poly_dir", "p/phd_dir", "p/chromat_dir", "p"}) {
    remove(missing);
    prepareIn(at("p"));
    expectReport("no such file or directory: " + at(missing) + "/");
  }
}

TEST_F(ProjectPrepare, NothingIsCreated) {
  for (const char* missing : {"p/poly_dir", "p/phd_dir", "p/chromat_dir", "p"}) {
    remove(missing);
    prepareIn(at("p"));
    EXPECT_FALSE(folder_.has(missing));
  }
}

TEST_F(ProjectPrepare, AnUnwriteableOutputDirectoryIsReported) {
  for (const char* name : {"p/poly_dir", "p/phd_dir"}) {
    setMode(name, 0577);  // everybody but the owner may write
    prepareIn(at("p"));
    expectReport("could not write to directory: " + at(name) + "/");
  }
}

TEST_F(ProjectPrepare, ToReadNoDirectoryNeedsToBeWriteable) {
  for (const char* name : {"p/poly_dir", "p/phd_dir"}) {
    setMode(name, 0500);
  }

  prepareIn(at("p"), Quillet::ProjectUse::read);

  expectRoot(at("p/"));
}

TEST_F(ProjectPrepare, ToReadEveryDirectoryMustBeReadable) {
  for (const char* name : {"p/poly_dir", "p/phd_dir", "p/chromat_dir", "p"}) {
    setMode(name, 0377);
    prepareIn(at("p"), Quillet::ProjectUse::read);
    expectReport("could not read directory: " + at(name) + "/");
  }
}

TEST_F(ProjectPrepare, AnUnreadableDirectoryIsReported) {
  for (const char* name : {"p/poly_dir", "p/phd_dir", "p/chromat_dir", "p"}) {
    setMode(name, 0377);  // everybody but the owner may read
    prepareIn(at("p"));
    expectReport("could not read directory: " + at(name) + "/");
  }
}

TEST_F(ProjectPrepare, ReadingIsCheckedBeforeWriting) {
  setMode("p/phd_dir", 0100);

  prepareIn(at("p"));

  expectReport("could not read directory: " + at("p/phd_dir/"));
}

TEST_F(ProjectPrepare, TheRootAndTheChromatDirectoryNeedNotBeWriteable) {
  setMode("p", 0500);
  setMode("p/chromat_dir", 0500);

  prepareIn(at("p"));

  expectRoot(at("p/"));
}

TEST_F(ProjectPrepare, AFileInADirectorysPlaceIsNotFoundWithAFinalSlash) {
  remove("p/phd_dir");
  folder_.write("p/phd_dir", "a file");

  prepareIn(at("p"));

  expectReport("no such file or directory: " + at("p/phd_dir/"));
}

TEST_F(ProjectPrepare, AFileInThePlaceOfARootWithoutSlashIsNoDirectory) {
  folder_.write("p/my_", "a file");

  prepareIn(at("p/my_edit_dir"));

  expectReport("not a directory " + at("p/my_"));
}

TEST_F(ProjectPrepare, APathThatCanNotBeWalkedIsReported) {
  fs::create_directory_symlink("loop", at("p/loop"));
  settings_.chromatDir = "loop/";

  prepareIn(at("p"));

  expectReport("could not access directory: " + at("p/loop/"));
}

TEST_F(ProjectPrepare, ADirectoryBelowAClosedOneIsDenied) {
  folder_.makeFolder("closed/traces");
  fs::permissions(folder_.path(), static_cast<fs::perms>(0755));
  setMode("closed", 0);
  settings_.chromatDir = at("closed/traces/");
  bool ordinary = false;

  {
    const OrdinaryUser user;
    ordinary = user.isOrdinary();
    prepareIn(at("p"));
  }

  if (!ordinary) {
    GTEST_SKIP() << "the superuser passes every permission test";
  }
  expectReport("permission denied " + at("closed/traces/"));
}

// The start time of the run.

TEST_F(ProjectPrepare, TimeTextAndTemporaryNameShowTheMomentOfConstruction) {
  const EnvironmentVariable zone("TZ", "UTC");
  const std::time_t before = std::time(nullptr);
  prepareIn(at("p"));
  const std::time_t after = std::time(nullptr);

  bool found = false;
  for (std::time_t moment = before; moment <= after; ++moment) {
    char timeText[64];
    char tempName[64];
    const std::tm* fields = std::gmtime(&moment);
    std::strftime(timeText, sizeof timeText, "%a %b %e %H:%M:%S %Y", fields);
    std::strftime(tempName, sizeof tempName, "temp%y%m%d%H%M%S", fields);
    found |= project_->timeText() == timeText && project_->tempName() == tempName;
  }
  EXPECT_TRUE(found) << project_->timeText() << ", " << project_->tempName();
}

TEST_F(ProjectPrepare, TheTemporaryNameIsMadeOnlyWhenTheDirectoriesAreRight) {
  remove("p/poly_dir");

  prepareIn(at("p"));

  EXPECT_EQ(project_->tempName().text(), std::string());
}

}  // namespace
