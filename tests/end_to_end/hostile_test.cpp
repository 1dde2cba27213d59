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

// The cost of files whose claims are false: at most one message each, bounded memory, and time in
// proportion to their length. The results of other files stay the same.

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string goodTrace() { return believableTrace(7, 300).abif().build(); }

/// Runs the program within limits: address space in KiB, processor time in seconds.
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

/// The text of a .poly file after its first word, the sample's name.
std::string afterName(const std::string& poly) {
  return poly.substr(std::min(poly.find(' '), poly.size()));
}

/// The good trace is the first and the last of the batch, with the same results as alone.
void expectGoodResults(const ProjectFolder& project) {
  const ProjectFolder alone;
  alone.addTrace("good", goodTrace());
  ASSERT_EQ(alone.run().status, 0);
  ASSERT_NE(alone.phdBases("good"), "");
  for (const char* name : {"0_before", "z_last"}) {
    EXPECT_TRUE(project.phdBases(name) == alone.phdBases("good")) << name;
    EXPECT_TRUE(afterName(project.poly(name)) == afterName(alone.poly("good"))) << name;
  }
}

void addGoodTraces(const ProjectFolder& project) {
  project.addTrace("0_before", goodTrace());
  project.addTrace("z_last", goodTrace());
}

TEST(Hostile, ATraceOfManyBasesGivesItsMemoryBackAtTheEndOfItsTurn) {
  if (underAddressSanitizer) GTEST_SKIP() << "no memory limit under the address sanitizer";
  // A million bases take 53 bytes each for their peaks, four million samples 16 bytes each. The
  // limit is enough for either, and not for both.
  constexpr std::uint32_t baseCount = 1'000'000;
  const ProjectFolder project;
  project.addTrace("1_bases", ScfBuilder()
                                  .version("3.00")
                                  .bases(std::string(baseCount, 'A'))
                                  .peaks(std::vector<std::uint32_t>(baseCount, 1))
                                  .probabilities('A', std::vector<int>(baseCount, 30))
                                  .build());
  project.addTrace("2_samples", ScfBuilder().version("2.00").header(4, 4'194'304).build());

  const ProgramResult result = runWithin(project, 100 * 1024, 60);

  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(project.has("poly_dir/1_bases.poly"));
  EXPECT_TRUE(project.has("poly_dir/2_samples.poly"));
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

  // All files in one run: the memory of one must be free again for the next.
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
