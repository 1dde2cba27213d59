#include <gtest/gtest.h>
#include <string>

#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

// The directory's position, like every other one, is added up modulo 2^32: an offset from an "ABIF"
// at byte 128 can lead back into the header in front of it.

TEST(AbifDirectoryPosition, IsAddedUpModulo2To32) {
  // The five entries that a trace without calls needs come first, 24 bytes each: they fit into the
  // 128 bytes in front of "ABIF". 0xFFFFFF80 + 128 is 0.
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
