#include "audit/companion_program.h"

#include <fcntl.h>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

#include "foundation/directory.h"
#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"

using Quillet::FlagKind;
using Quillet::runCompanion;
using Quillet::UsageError;
using Quillet::withUsualFlags;
using ::testing::ElementsAre;

namespace {

/// A parser with -d VALUE, -s and --help.
FlagKind kindOf(const std::string& word) {
  if (word == "-d") return FlagKind::withValue;
  return word == "-s" || word == "--help" ? FlagKind::alone : FlagKind::unknown;
}

using Words = std::vector<std::string>;

struct Outcome {
  int status;
  std::string message;
};

template <typename Body>
Outcome run(const Body& body) {
  testing::internal::CaptureStderr();
  const int status =
      runCompanion("quillet-x", 0, nullptr, [&body](const Words&) { return body(); });
  return {status, testing::internal::GetCapturedStderr()};
}

}  // namespace

TEST(CompanionProgram, GivesTheConvertersLongFlagsTheirUsualNames) {
  EXPECT_THAT(withUsualFlags({"-dir", "x", "-nostrip", "-help"}, kindOf),
              ElementsAre("-d", "x", "-s", "--help"));
}

// "-overwrite" would be -o with the value "verwrite".
TEST(CompanionProgram, KeepsALongFlagThatTheParserDoesNotKnowFromBeingShortOnes) {
  EXPECT_THAT(withUsualFlags({"-list", "-overwrite", "-version", "-other"}, kindOf),
              ElementsAre("--list", "--overwrite", "--version", "-other"));
}

TEST(CompanionProgram, LeavesTheValueOfAFlag) {
  EXPECT_THAT(withUsualFlags({"-dir", "-nostrip", "-nostrip"}, kindOf),
              ElementsAre("-d", "-nostrip", "-s"));
  EXPECT_THAT(withUsualFlags({"-d"}, kindOf), ElementsAre("-d"));
}

TEST(CompanionProgram, HasTheStatusOfItsBody) {
  const Outcome outcome = run([] { return 3; });

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.message, "");
}

TEST(CompanionProgram, TurnsWhatIsThrownIntoAMessageAndStatusOne) {
  const struct {
    std::function<int()> body;
    std::string message;
  } cases[] = {
      {[]() -> int { throw UsageError("no"); }, "quillet-x: no\nTry `quillet-x --help'.\n"},
      {[]() -> int { throw std::runtime_error("full"); }, "quillet-x: full\n"},
      {[]() -> int { throw Tessaly::Directory::NotFound("/p"); },
       "quillet-x: no such file or directory: /p\n"},
      {[]() -> int { throw "text"; }, "quillet-x: text\n"},
      {[]() -> int { throw 1; }, ""},
      {[]() -> int { throw 2.5; }, "quillet-x: unexpected exception\n"}};
  for (const auto& each : cases) {
    const Outcome outcome = run(each.body);

    EXPECT_EQ(outcome.status, 1) << each.message;
    EXPECT_EQ(outcome.message, each.message);
  }
}

TEST(CompanionProgram, LetsNoFileTakeTheNumberOfAClosedStream) {
  const int saved = dup(STDIN_FILENO);
  close(STDIN_FILENO);

  int opened = -1;
  runCompanion("quillet-x", 0, nullptr, [&opened](const Words&) {
    opened = open("/dev/null", O_RDONLY);
    return 0;
  });
  dup2(saved, STDIN_FILENO);
  close(saved);

  EXPECT_GT(opened, STDERR_FILENO);
  close(opened);
}

TEST(CompanionProgram, HandsOverTheWordsAfterItsName) {
  const char* const arguments[] = {"/usr/bin/quillet-x", "-d", "", nullptr};
  Words taken{"other"};
  const auto take = [&taken](const Words& words) {
    taken = words;
    return 0;
  };

  runCompanion("quillet-x", 3, arguments, take);
  EXPECT_THAT(taken, ElementsAre("-d", ""));

  runCompanion("quillet-x", 0, arguments, take);
  EXPECT_THAT(taken, ElementsAre());
}

TEST(CompanionProgram, HasTheSettingsOfTheConverter) {
  const ScratchFolder folder;
  folder.write(".quilletrc", "phddir results\n");
  const EnvironmentVariable home("HOME", folder.path().c_str());
  const EnvironmentVariable pwd("PWD", folder.path().c_str());

  const Quillet::Settings settings = Quillet::settingsOfRun({"-d", "plate", "-s"});

  EXPECT_EQ(settings.phdDir, "results/");
  EXPECT_EQ(settings.dataDir, "plate/");
  EXPECT_FALSE(settings.stripExtensions);
}
