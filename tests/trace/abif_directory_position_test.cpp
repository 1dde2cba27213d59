#include <gtest/gtest.h>
#include <string>

#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

// The directory's position, like every other one, is computed modulo 2^32. An offset from an "ABIF"
// at byte 128 can therefore lead back into the header before it.

TEST(AbifDirectoryPosition, IsAddedUpModulo2To32) {
  // A trace without calls needs five entries. They come first and have 24 bytes each, so they fit
  // into the 128 bytes before "ABIF". 0xFFFFFF80 + 128 is 0.
  constexpr std::size_t directorySize = 5 * 24;
  std::string bytes = AbifBuilder()
                          .prefix(128)
                          .stride(24)
                          .headerEntryCount(5)
                          .headerDirectoryOffset(0xFFFFFF80)
                          .build();
  const std::size_t directory = bytes.find("DATA");
  bytes.replace(0, directorySize, bytes.substr(directory, directorySize));
  bytes.replace(directory, directorySize, directorySize, '\0');

  const OpenedTrace trace = openBytes(bytes);

  ASSERT_TRUE(trace.read);
  EXPECT_EQ(trace.g, risingFrom(300));
  EXPECT_EQ(trace.t, risingFrom(400));
}
