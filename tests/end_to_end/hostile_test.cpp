#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/hostile_traces.h"
#include "tests/support/project_folder.h"
#include "tests/support/sanitizer.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// What files may cost that are something else than they claim: their message, and no other file's
// result, a bounded amount of memory, and no more time than their length explains.

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string goodTrace() { return believableTrace(7, 300).abif().build(); }

/// The program within these limits: address space in KiB, processor time in seconds.
ProgramResult runWithin(const ProjectFolder& project, int kibibytes, int seconds) {
  const std::string memory =
      underAddressSanitizer ? "" : "ulimit -v " + std::to_string(kibibytes) + " && ";
  return runProgram("sh", {.folder = project.path().string(),
                           .arguments = {"-c", memory + "ulimit -t " + std::to_string(seconds) +
                                                   " && exec '" QUILLET_PROGRAM "'"}});
}

constexpr int promisedMemory = 256 * 1024;  // KiB
#ifdef NDEBUG
constexpr int secondsForAll = 5;
#else
constexpr int secondsForAll = 60;
#endif

/// What stands behind the sample's name, the first word.
std::string behindName(const std::string& poly) {
  return poly.substr(std::min(poly.find(' '), poly.size()));
}

/// The good trace lies before and behind all others and comes out as it does alone.
void expectGoodResults(const ProjectFolder& project) {
  const ProjectFolder alone;
  alone.addTrace("good", goodTrace());
  ASSERT_EQ(alone.run().status, 0);
  ASSERT_NE(alone.phdBases("good"), "");
  for (const char* name : {"0_before", "z_behind"}) {
    EXPECT_TRUE(project.phdBases(name) == alone.phdBases("good")) << name;
    EXPECT_TRUE(behindName(project.poly(name)) == behindName(alone.poly("good"))) << name;
  }
}

void addGoodTraces(const ProjectFolder& project) {
  project.addTrace("0_before", goodTrace());
  project.addTrace("z_behind", goodTrace());
}

}  // namespace

TEST(Hostile, FilesOf2MebibytesCostAMessageAtMostAndNeither256MebibytesNorMinutes) {
  const ProjectFolder project;
  addGoodTraces(project);
  std::vector<std::string> refused;
  for (const HostileTrace& hostile : hostileTraces()) {
    project.addTrace(hostile.name, hostile.bytes);
    if (!hostile.converted) refused.push_back(hostile.name);
  }

  // One after the other in one run: what a file took must be free for the next.
  const ProgramResult result = runWithin(project, promisedMemory, secondsForAll);

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  std::string errors = result.err;
  for (const std::string& name : refused) {
    const std::string message = project.invalidTrace(name);
    const std::size_t found = errors.find(message);
    ASSERT_NE(found, std::string::npos) << name;
    errors.erase(found, message.size());
  }
  EXPECT_THAT(errors, Not(HasSubstr("ERROR")));
  for (const HostileTrace& hostile : hostileTraces()) {
    EXPECT_EQ(project.has("phd_dir/" + hostile.name + ".phd.1"), hostile.converted) << hostile.name;
    EXPECT_EQ(project.has("poly_dir/" + hostile.name + ".poly"), hostile.converted) << hostile.name;
  }
  expectGoodResults(project);
}

TEST(Hostile, ALineWithoutEndIsNotKeptWhileTheCallerIsSought) {
  if (underAddressSanitizer) GTEST_SKIP() << "no memory limit under the address sanitizer";
  const ProjectFolder project;
  addGoodTraces(project);
  project.addTrace("line", ScfBuilder().comments("NAME=built\n").build());
  std::filesystem::resize_file(project.path() / "chromat_dir/line", std::uintmax_t{80} << 20);

  const ProgramResult result = runWithin(project, 64 * 1024, 60);

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.err, Not(HasSubstr("ERROR")));
  EXPECT_THAT(project.phd("line"), HasSubstr("\nCALL_METHOD: \n"));
  expectGoodResults(project);
}
