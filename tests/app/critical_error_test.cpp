#include "app/critical_error.h"

#include <csignal>
#include <gtest/gtest.h>

namespace {

// The handler never returns, so each test runs it in a child process.

TEST(CriticalErrorDeathTest, TheExitStatusIsTheSignalsNumber) {
  for (const int number : {11, 7, 1, 64}) {
    EXPECT_EXIT(Quillet::criticalErrorHandler(number), ::testing::ExitedWithCode(number),
                "A critical error has occurred");
  }
}

TEST(CriticalErrorDeathTest, TheBannerIsAsWideAsItsRules) {
  const char* banner =
      "\n-{68}"
      "\n A critical error has occurred\\. {37}"
      "\n Please notify the Hallorand group, quillet@hallorand\\.example "
      "\n-{68}\n\n";

  EXPECT_EXIT(Quillet::criticalErrorHandler(SIGSEGV), ::testing::ExitedWithCode(11), banner);
}

TEST(CriticalErrorDeathTest, StartUpInstallsTheHandlerForSegmentationFaults) {
  const auto fault = [] {
    const Quillet::StartUp startUp;
    std::raise(SIGSEGV);
  };

  EXPECT_EXIT(fault(), ::testing::ExitedWithCode(11), "A critical error has occurred");
}

TEST(CriticalErrorDeathTest, StartUpInstallsTheHandlerForBusErrors) {
  const auto fault = [] {
    const Quillet::StartUp startUp;
    std::raise(SIGBUS);
  };

  EXPECT_EXIT(fault(), ::testing::ExitedWithCode(7), "A critical error has occurred");
}

TEST(CriticalErrorDeathTest, TheHandlerStaysInstalledWhenTheStartUpObjectIsGone) {
  const auto fault = [] {
    { const Quillet::StartUp startUp; }
    std::raise(SIGSEGV);
  };

  EXPECT_EXIT(fault(), ::testing::ExitedWithCode(11), "A critical error has occurred");
}

TEST(CriticalErrorDeathTest, OtherSignalsKeepTheirDefault) {
  const auto end = [](int number) {
    const Quillet::StartUp startUp;
    std::raise(number);
  };

  EXPECT_EXIT(end(SIGTERM), ::testing::KilledBySignal(SIGTERM), "^$");
  EXPECT_EXIT(end(SIGUSR1), ::testing::KilledBySignal(SIGUSR1), "^$");
}

}  // namespace
