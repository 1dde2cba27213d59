#include "foundation/string.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/resource.h>

#include "tests/foundation/string_state.h"
#include "tests/support/sanitizer.h"
#include "tests/support/thrown_text.h"

// Buffers that can not be allocated.

namespace {

using Tessaly::String;

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

/// Limits the process to 1 GiB, asks for 2 GiB and ends the process: with status 0 when that failed
/// as expected.
[[noreturn]] void exitAfterAskingForTooMuch() {
  const rlimit limit = {1U << 30, 1U << 30};
  const bool limited = setrlimit(RLIMIT_AS, &limit) == 0;
  String text("abc");

  const std::string resizing = thrownText([&] { text.setCapacity(largest); });
  const std::string making = thrownText([] { String unusable(largest - 1); });

  const bool unchanged = text == "abc" && text.capacity() == 4;
  const bool refused = resizing == allocationText && making == allocationText;
  std::exit(limited && refused && unchanged ? 0 : 1);
}

}  // namespace

TEST(String, LackOfMemoryIsAnAllocationErrorAndChangesNothing) {
  if (underAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process instead";
  EXPECT_EXIT(exitAfterAskingForTooMuch(), testing::ExitedWithCode(0), "");
}

TEST(String, ARoomThatLeavesNoPlaceForTheZeroByteIsAnAllocationError) {
  EXPECT_EQ(thrownText([] { String unusable(largest); }), allocationText);
  EXPECT_EQ(thrownText([] { String unusable('x', largest); }), allocationText);
}

TEST(String, ADoublingPastTheLargestCapacityIsAnAllocationError) {
  constexpr std::int32_t half = 1 << 30;  // twice this is one more than fits
  String text("abc");

  EXPECT_EQ(thrownText([&] { text.fill('x', half); }), allocationText);
  EXPECT_EQ(thrownText([&] { text.append("never read", half - 3); }), allocationText);
  EXPECT_EQ(thrownText([&] { text.append("never read", largest); }), allocationText);

  expectState(text, "abc", 4);
}
