#pragma once

#include <array>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/string.h"
#include "tests/support/trace_generator.h"

/// A trace for benchmarks: 900 bases, about 10,800 samples in each channel. Its file has a hundred
/// further directory entries.
struct BenchTrace {
  explicit BenchTrace(std::uint32_t seed = 1)
      : contents(believableTrace(seed, 900)), bases(contents.bases.c_str()) {
    for (std::size_t c = 0; c < 4; ++c) {
      for (const int sample : contents.channels[c]) {
        channels[c].push_back(static_cast<std::uint16_t>(sample));
      }
    }
    peaks.assign(contents.peaks.begin(), contents.peaks.end());
    peaks.push_back(static_cast<std::int32_t>(pointCount()));
    for (const int quality : contents.qualities) qualities.append(static_cast<char>(quality));
  }

  std::string file() const {
    return contents.abif().callerName("KB 1.4").otherEntries(100).build();
  }
  std::uint32_t pointCount() const { return static_cast<std::uint32_t>(channels[0].size()); }
  std::int32_t baseCount() const { return bases.length(); }

  TraceContents contents;
  std::array<std::vector<std::uint16_t>, 4> channels;
  Tessaly::String bases;
  Tessaly::String qualities;
  std::vector<std::int32_t> peaks;
};

/// A counter that shows the time for one of `count` items.
inline benchmark::Counter timeOfEach(double count) {
  return {count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert};
}
