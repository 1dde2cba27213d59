#include "foundation/progress_meter.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <string>
#include <sys/socket.h>
#include <type_traits>
#include <unistd.h>

#include "tests/support/captured_stderr.h"

namespace {

using Tessaly::ProgressMeter;

/// The output of `action` on the standard error stream.
template <typename Action>
std::string written(Action action) {
  CapturedStderr captured;
  action();
  return captured.text();
}

/// The output of start() and `stepCount` steps of a new meter without a terminal.
std::string drawnBy(std::int32_t itemCount, int stepCount) {
  return written([&] {
    ProgressMeter meter(itemCount, false);
    meter.start();
    for (int step = 0; step < stepCount; ++step) meter.step();
  });
}

std::string waitingBytes(int handle) {
  char bytes[256];
  const ssize_t count = read(handle, bytes, sizeof bytes);
  return {bytes, count > 0 ? static_cast<std::size_t>(count) : 0};
}

/// What comes up to a line feed. The system may hand a terminal's line over in pieces, and later.
std::string lineFrom(int handle) {
  constexpr int longestWait = 10'000;  // milliseconds
  std::string line;
  pollfd waited{handle, POLLIN, 0};
  while (!line.ends_with('\n') && poll(&waited, 1, longestWait) > 0) line += waitingBytes(handle);
  return line;
}

}  // namespace

TEST(ProgressMeter, ConstructionDrawsNothing) {
  EXPECT_EQ(written([] {
              ProgressMeter asked(3);
              ProgressMeter terminal(3, true);
            }),
            "");
}

TEST(ProgressMeter, OneItemGoesFromNothingToAll) {
  EXPECT_EQ(drawnBy(1, 1), "   0% done\n 100% done\n");
}

TEST(ProgressMeter, ThreeItemsRoundUp) {
  EXPECT_EQ(drawnBy(3, 3), "   0% done\n  34% done\n  67% done\n 100% done\n");
}

TEST(ProgressMeter, TwoHundredItemsRedrawAtEverySecondStep) {
  EXPECT_EQ(drawnBy(200, 1), "   0% done\n   1% done\n");
  EXPECT_EQ(drawnBy(200, 2), "   0% done\n   1% done\n");
  EXPECT_EQ(drawnBy(200, 3), "   0% done\n   1% done\n   2% done\n");
  EXPECT_EQ(drawnBy(200, 4), "   0% done\n   1% done\n   2% done\n");
  EXPECT_EQ(drawnBy(200, 5), "   0% done\n   1% done\n   2% done\n   3% done\n");
}

TEST(ProgressMeter, ShowsTheCeilingOfThePercentageWheneverItChanges) {
  for (int itemCount : {1, 2, 3, 7, 99, 100, 101, 150, 1000}) {
    std::string expected = "   0% done\n";
    int shown = 0;
    for (int step = 1; step <= itemCount; ++step) {
      const int percent = (100 * step + itemCount - 1) / itemCount;
      if (percent == shown) continue;
      shown = percent;
      const std::string n = std::to_string(percent);
      expected += std::string(4 - n.size(), ' ') + n + "% done\n";
    }

    EXPECT_EQ(drawnBy(itemCount, itemCount), expected) << itemCount;
  }
}

TEST(ProgressMeter, MoreStepsThanItemsCountPastAHundred) {
  const std::string drawn = drawnBy(100, 101);

  EXPECT_EQ(drawn.substr(drawn.size() - 22), " 100% done\n 101% done\n");
}

TEST(ProgressMeter, APercentageWiderThanItsFieldIsWhole) {
  const std::string drawn = drawnBy(1, 100);

  EXPECT_EQ(drawn.substr(drawn.size() - 23), "9900% done\n10000% done\n");
}

TEST(ProgressMeter, AHundredMillionItemsShowTheRightPercentage) {
  std::string expected = "   0% done\n";
  for (int percent = 1; percent <= 30; ++percent) {
    expected += (percent < 10 ? "   " : "  ") + std::to_string(percent) + "% done\n";
  }

  EXPECT_EQ(drawnBy(100'000'000, 30'000'000), expected);
}

TEST(ProgressMeter, ALabelStandsInParentheses) {
  const std::string longLabel(5000, 'x');

  EXPECT_EQ(written([&] {
              ProgressMeter meter(4, false);
              meter.start();
              meter.step("b.ab1");
              meter.step("");
              meter.step(nullptr);
              meter.step(longLabel.c_str());
            }),
            "   0% done\n  25% done (b.ab1)\n  50% done ()\n  75% done\n 100% done (" + longLabel +
                ")\n");
}

TEST(ProgressMeter, AStepThatChangesNothingIsSilentEvenWithALabel) {
  EXPECT_EQ(written([] {
              ProgressMeter meter(200, false);
              meter.step("a");
              meter.step("b");
            }),
            "   1% done (a)\n");
}

TEST(ProgressMeter, StartingAgainKeepsThePercentage) {
  EXPECT_EQ(written([] {
              ProgressMeter meter(2, false);
              meter.start();
              meter.step();
              meter.start();
              meter.step();  // 50 again: not drawn
              meter.step();
            }),
            "   0% done\n  50% done\n  50% done\n 100% done\n");
}

TEST(ProgressMeter, ANewCountKeepsProgressAndPercentAndClearsTheThreshold) {
  EXPECT_EQ(written([] {
              ProgressMeter meter(4, false);
              meter.start();
              meter.step();       // progress 100, percent 25, threshold 100
              meter.setCount(2);  // threshold 0
              meter.step();       // progress 200: 100 percents of 2 more
            }),
            "   0% done\n  25% done\n 125% done\n");
}

TEST(ProgressMeter, TheScaledCountIsThatOfConstruction) {
  ProgressMeter meter(100'000'000, false);
  meter.setCount(3);

  EXPECT_EQ(meter.scaledCount(), 10'000'000'000);
}

TEST(ProgressMeter, WithoutItemsStepsEndAndDrawNothing) {
  EXPECT_EQ(drawnBy(0, 3), "   0% done\n");
  EXPECT_EQ(drawnBy(-5, 3), "   0% done\n");
}

TEST(ProgressMeter, OnATerminalEachDrawingErasesItsLineAndGoesBackToIt) {
  EXPECT_EQ(written([] {
              ProgressMeter meter(2, true);
              meter.start();
              meter.step("b.ab1");
            }),
            "\x1b[2K   0% done\x1b[A\n\x1b[2K  50% done (b.ab1)\x1b[A\n");
}

TEST(ProgressMeter, ClearLineWritesOnATerminalOnly) {
  EXPECT_EQ(written([] { ProgressMeter(2, true).clearLine(); }), "\x1b[2K");
  EXPECT_EQ(written([] { ProgressMeter(2, false).clearLine(); }), "");
}

TEST(ProgressMeter, IntoAFileNoEscapeSequenceIsWritten) {
  EXPECT_EQ(written([] {
              ProgressMeter meter(2);
              meter.start();
              meter.step();
              meter.clearLine();
            }),
            "   0% done\n  50% done\n");
}

TEST(ProgressMeter, AsksOnceWhetherStandardErrorIsATerminal) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
  if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) GTEST_SKIP() << "no terminal";
  const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  CapturedStderr file;
  ProgressMeter madeOnFile(2);
  std::string fromFileMeter;
  std::string fromTerminalMeter;

  {
    RedirectedStderr redirection(terminal);
    ProgressMeter madeOnTerminal(2);
    madeOnFile.start();
    fromFileMeter = lineFrom(master);
    madeOnTerminal.start();
    fromTerminalMeter = lineFrom(master);
  }
  close(terminal);
  close(master);

  EXPECT_EQ(fromFileMeter, "   0% done\r\n");  // the terminal adds the carriage return
  EXPECT_EQ(fromTerminalMeter, "\x1b[2K   0% done\x1b[A\r\n");
}

TEST(ProgressMeter, EachDrawingIsOneWrite) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0, ends), 0);  // one message a write
  std::string first;
  std::string second;
  std::string third;

  {
    RedirectedStderr redirection(ends[0]);
    ProgressMeter meter(2, true);
    meter.start();
    meter.step("b.ab1");
    first = waitingBytes(ends[1]);
    second = waitingBytes(ends[1]);
    third = waitingBytes(ends[1]);
  }
  close(ends[0]);
  close(ends[1]);

  EXPECT_EQ(first, "\x1b[2K   0% done\x1b[A\n");
  EXPECT_EQ(second, "\x1b[2K  50% done (b.ab1)\x1b[A\n");
  EXPECT_EQ(third, "");
}

TEST(ProgressMeter, IsAPlainValue) { EXPECT_TRUE(std::is_trivially_copyable_v<ProgressMeter>); }
