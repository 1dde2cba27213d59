#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/channels.h"
#include "foundation/string.h"
#include "tests/support/trace_generator.h"

/// A trace for benchmarks: 900 bases, about 10,800 samples in each channel. Its file has a hundred
/// further directory entries.
struct BenchTrace {
  explicit BenchTrace(std::uint32_t seed = 1)
      : contents(believableTrace(seed, 900)),
        channels(static_cast<std::uint32_t>(contents.channels[0].size())),
        bases(contents.bases.c_str()) {
    for (int c = 0; c < Quillet::channelCount; ++c) {
      std::ranges::transform(contents.channels[static_cast<std::size_t>(c)], channels[c].begin(),
                             [](int sample) { return static_cast<std::uint16_t>(sample); });
    }
    peaks.assign(contents.peaks.begin(), contents.peaks.end());
    peaks.push_back(static_cast<std::int32_t>(channels.pointCount()));
    for (const int quality : contents.qualities) qualities.append(static_cast<char>(quality));
  }

  std::string file() const {
    return contents.abif().callerName("KB 1.4").otherEntries(100).build();
  }
  std::int32_t baseCount() const { return bases.length(); }

  TraceContents contents;
  Quillet::Channels channels;
  Tessaly::String bases;
  Tessaly::String qualities;
  std::vector<std::int32_t> peaks;
};

/// A counter that shows the time for one of `count` items.
inline benchmark::Counter timeOfEach(double count) {
  return {count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert};
}
