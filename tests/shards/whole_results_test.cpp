#include "shards/whole_results.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"

namespace {

namespace fs = std::filesystem;

bool isWhole(const ProjectFolder& project, const std::string& sample) {
  const std::string root = project.path();
  return Quillet::WholeResults(root + "/phd_dir", root + "/poly_dir").has(sample);
}

TEST(WholeResults, TheConvertersResultsAreWhole) {
  const ProjectFolder project;
  const std::string everyByte = [] {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
    return bytes;
  }();
  project.addTrace("a plain one", AbifBuilder().build());
  project.addTrace("odd bases", AbifBuilder().bases(everyByte).build());
  project.addTrace("odd caller", AbifBuilder().callerName("\nBEGIN_DNA\nA 1 1\n").build());
  project.addTrace("without calls", AbifBuilder().bases("").qualities({}).peaks({}).build());
  project.addTrace("a\nname\nBEGIN_DNA\n 1 1 1 1 1\n", AbifBuilder().build());
  project.addTrace("-\t'\"$x.ab1", AbifBuilder().build());
  ASSERT_EQ(project.run().status, 0);
  ASSERT_EQ(project.entries("phd_dir").size(), 6U);

  for (const std::string& name : project.entries("phd_dir")) {
    const std::string sample = name.substr(0, name.size() - std::string(".phd.1").size());
    EXPECT_TRUE(isWhole(project, sample)) << sample;
  }
}

TEST(WholeResults, OneSampleAfterTheOtherIsLookedAt) {
  const ProjectFolder project;
  project.addTrace("long", AbifBuilder().bases(std::string(500, 'A')).build());
  project.addTrace("short", AbifBuilder().build());
  ASSERT_EQ(project.run().status, 0);
  const std::string root = project.path();
  Quillet::WholeResults results(root + "/phd_dir", root + "/poly_dir");

  for (const char* sample : {"short", "long", "short", "long"}) {
    EXPECT_TRUE(results.has(sample)) << sample;
    EXPECT_FALSE(results.has("missing"));
  }
}

TEST(WholeResults, NoCutResultIsWhole) {
  const ProjectFolder project;
  project.addTrace("x", AbifBuilder().build());
  ASSERT_EQ(project.run().status, 0);
  ASSERT_TRUE(isWhole(project, "x"));

  for (const std::string file : {"phd_dir/x.phd.1", "poly_dir/x.poly"}) {
    const std::string whole = project.read(file);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      project.write(file, whole.substr(0, size));
      EXPECT_FALSE(isWhole(project, "x")) << file << ' ' << size;
    }
    project.write(file, whole);
    ASSERT_TRUE(isWhole(project, "x"));
  }
}

TEST(WholeResults, NoMissingOtherOrForeignFileIsWhole) {
  const ProjectFolder project;
  project.addTrace("x", AbifBuilder().build());
  project.addTrace("y", AbifBuilder().bases("ACGTA").build());
  ASSERT_EQ(project.run().status, 0);

  EXPECT_FALSE(isWhole(project, "z"));
  EXPECT_FALSE(Quillet::WholeResults("none", "none").has("x"));
  fs::copy_file("poly_dir/x.poly", "poly_dir/z.poly");
  EXPECT_FALSE(isWhole(project, "z")) << "no .phd.1";
  fs::remove("poly_dir/x.poly");
  EXPECT_FALSE(isWhole(project, "x")) << "no .poly";
  fs::create_directory("poly_dir/x.poly");
  EXPECT_FALSE(isWhole(project, "x")) << "a folder";
  fs::remove("poly_dir/x.poly");
  fs::copy_file("poly_dir/y.poly", "poly_dir/x.poly");
  EXPECT_FALSE(isWhole(project, "x")) << "of another sample";
  std::string poly = project.read("poly_dir/y.poly");
  poly.front() = 'x';
  project.write("poly_dir/x.poly", poly);
  EXPECT_FALSE(isWhole(project, "x")) << "of another number of bases";
}

}  // namespace
