#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/program.h"
#include "tests/support/scratch_folder.h"

// Real traces are outside the repository, in a folder "golden". Its program "check" converts them
// in a project of its own and compares every file and message with the expected ones.

namespace {

std::string checkProgram() {
  const char* folder = std::getenv("QUILLET_GOLDEN");
  const std::filesystem::path golden =
      folder != nullptr ? folder : std::string(QUILLET_SOURCE_DIR) + "/../shared/golden";
  return std::filesystem::absolute(golden / "check").string();
}

void compareSet(const std::string& set, const std::string& verdict) {
  const std::string check = checkProgram();
  if (!std::filesystem::exists(check)) GTEST_SKIP() << "no real traces at " << check;
  const ScratchFolder folder;

  const ProgramResult result =
      runProgram(check, {.folder = folder.path().string(), .arguments = {QUILLET_PROGRAM, set}});

  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, verdict);
  EXPECT_EQ(result.status, 0);
}

}  // namespace

TEST(RealTraces, OfTheAbifFormatGiveTheExpectedFilesAndMessages) {
  compareSet("abi", "golden abi: 6 traces, all equal\n");
}

TEST(RealTraces, OfBothFormatsGiveTheExpectedFilesAndMessages) {
  compareSet("all", "golden all: 8 traces, all equal\n");
}
