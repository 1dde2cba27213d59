#include "app/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "app/version.h"

namespace {

using Quillet::Settings;

std::string withTrailingSlash(std::string directory) {
  Quillet::ensureTrailingSlash(directory);
  return directory;
}

TEST(Settings, TheDefaultsDescribeAProjectInTheWorkingDirectory) {
  const Settings settings;

  EXPECT_EQ(settings.chromatDir, "chromat_dir/");
  EXPECT_EQ(settings.editDir, "edit_dir/");
  EXPECT_EQ(settings.phdDir, "phd_dir/");
  EXPECT_EQ(settings.polyDir, "poly_dir/");
  EXPECT_EQ(settings.listFile_, "");
  EXPECT_FALSE(settings.overwrite);
  EXPECT_TRUE(settings.stripExtensions);
}

TEST(Settings, TheDefaultDataDirectoryIsEmptyAndNotTheRoot) {
  const Settings settings;

  EXPECT_EQ(settings.dataDir, "");
}

TEST(Settings, VersionAndBuildStampAreTheCompiledInOnes) {
  const Settings settings;

  EXPECT_EQ(settings.version, "1.1.0");
  EXPECT_EQ(settings.buildStamp, Quillet::buildStampText);
  EXPECT_THAT(settings.buildStamp,
              ::testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"
                                      "( [0-9a-f]{7,})?"));
}

TEST(Settings, ADirectoryTextGetsOneTrailingSlashUnlessItHasOne) {
  const struct {
    const char* given;
    const char* expected;
  } cases[] = {
      {"/data/proj", "/data/proj/"},
      {"/data/proj/", "/data/proj/"},
      {"out", "out/"},
      {"out/", "out/"},
      {"out//", "out//"},
      {"a/b", "a/b/"},
      {"a", "a/"},
      {"/", "/"},
      {".", "./"},
      {" ", " /"},
      {"-o", "-o/"},
      {"out\\", "out\\/"},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(withTrailingSlash(row.given), row.expected) << "given: " << row.given;
  }
}

TEST(Settings, AnEmptyDirectoryTextStaysEmpty) { EXPECT_EQ(withTrailingSlash(""), ""); }

TEST(Settings, WithoutAListFileThereIsNoName) {
  const Settings settings;
  Tessaly::String name("untouched");

  EXPECT_FALSE(settings.listFile(name));
  EXPECT_STREQ(name.text(), "untouched");
}

TEST(Settings, TheListFileIsGivenUnchanged) {
  for (const char* listed : {"names.txt", "-", "/data/names", " ", "dir/"}) {
    Settings settings;
    settings.listFile_ = listed;
    Tessaly::String name("former");

    EXPECT_TRUE(settings.listFile(name));
    EXPECT_STREQ(name.text(), listed);
  }
}

}  // namespace
