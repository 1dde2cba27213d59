#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/channels.h"
#include "output/poly_peaks.h"
#include "output/poly_stages.h"
#include "tests/output/plain_poly.h"

// Between the vectors of the plain peak computation and the arrays of the program's own.

inline Quillet::Channels channelsOf(const PolyInput& input) {
  Quillet::Channels channels(static_cast<std::uint32_t>(input.pointCount()));
  for (int channel = 0; channel < Quillet::channelCount; ++channel) {
    std::ranges::copy(input.channels[static_cast<std::size_t>(channel)], channels[channel].begin());
  }
  return channels;
}

inline void copyBack(const Quillet::Channels& channels, PolyInput& input) {
  for (int channel = 0; channel < Quillet::channelCount; ++channel) {
    const auto samples = channels[channel];
    input.channels[static_cast<std::size_t>(channel)].assign(samples.begin(), samples.end());
  }
}

inline Tessaly::String basesOf(const PolyInput& input) {
  Tessaly::String bases;
  bases.append(input.bases.data(), input.baseCount());
  return bases;
}

/// An array of `count` entries that hold a value which no stage leaves there.
template <typename Value>
std::unique_ptr<Value[]> dirtyArray(std::size_t count) {
  auto array = std::make_unique_for_overwrite<Value[]>(count);
  std::fill_n(array.get(), count, static_cast<Value>(99));
  return array;
}

inline Quillet::ChannelPeakArrays dirtyPeaks(std::size_t baseCount) {
  return {.positions = dirtyArray<std::int32_t>(baseCount),
          .heights = dirtyArray<std::uint32_t>(baseCount),
          .normalisedHeights = dirtyArray<std::int32_t>(baseCount)};
}

template <typename Value>
std::vector<Value> vectorOf(const Value* array, std::size_t count) {
  return {array, array + count};
}
template <typename Value>
std::vector<Value> vectorOf(const std::unique_ptr<Value[]>& array, std::size_t count) {
  return {array.get(), array.get() + count};
}

/// Runs the whole computation on the input, whose channels end up rescaled.
inline PolyResult computeWith(Quillet::PolyPeaks& polyPeaks, PolyInput& input) {
  Quillet::Channels channels = channelsOf(input);
  const Tessaly::String bases = basesOf(input);
  polyPeaks.compute({channels, bases, input.bases.empty() ? nullptr : input.peaks.data()});
  copyBack(channels, input);

  const std::size_t count = input.bases.size();
  PolyResult result;
  for (int channel = 0; channel < Quillet::channelCount; ++channel) {
    const auto index = static_cast<std::size_t>(channel);
    const Quillet::ChannelPeaks peaks = polyPeaks.channel(channel);
    result.peakPos[index] = vectorOf(peaks.positions, count);
    result.peakAmp[index] = vectorOf(peaks.heights, count);
    result.normAmp[index] = vectorOf(peaks.normalisedHeights, count);
  }
  result.secondBase.assign(polyPeaks.secondPeaks().bases, count);
  result.secondPos = vectorOf(polyPeaks.secondPeaks().positions, count);
  return result;
}
