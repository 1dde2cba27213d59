#include "output/trace_writer.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "trace/trace_file.h"

// The writer of SCF files against the reader. The writer keeps the host's byte order; the reader
// expects that of the format.

namespace {

/// The value that the reader gives for a written sample: on a little-endian host its two bytes are
/// exchanged.
std::uint16_t asRead(std::int16_t sample) {
  const auto bits = static_cast<std::uint16_t>(sample);  // the same 16 bits
  if (std::endian::native == std::endian::big) return bits;
  return static_cast<std::uint16_t>(bits << 8 | bits >> 8);  // back to 16 bits
}

TEST(TraceWriter, WhatItWritesIsReadBackWithTheBytesOfEachSampleExchanged) {
  const ScratchFolder folder;
  const std::vector<std::int16_t> written[4] = {
      {1, 2, 3}, {0x0102, 0x7FFF, 0}, {-1, -2, 256}, {0x1234, 5, 0x0500}};
  const std::int16_t* const channels[4] = {written[0].data(), written[1].data(), written[2].data(),
                                           written[3].data()};
  Tessaly::String name = folder.at("trace");
  Quillet::TraceWriter().writeTrace(name, channels, 3);

  Quillet::TraceFile trace;
  ASSERT_TRUE(trace.open(name));
  const Quillet::Channels& read = trace.content().channels;

  ASSERT_EQ(read.pointCount(), 3u);
  EXPECT_EQ(trace.baseCount(), 0u);
  for (std::size_t channel = 0; channel < 4; ++channel) {
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(read[static_cast<int>(channel)][i], asRead(written[channel][i]))
          << channel << ", " << i;
    }
  }
  if (std::endian::native == std::endian::little) {
    EXPECT_EQ(read[0][0], 0x0100);
    EXPECT_EQ(read[1][0], 0x0201);
    EXPECT_EQ(read[2][1], 0xFEFF);
    EXPECT_EQ(read[3][2], 0x0005);
  }
}

}  // namespace
