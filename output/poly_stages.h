#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "foundation/channels.h"
#include "output/poly_peaks.h"

// The stages of the peak computation, in their order. PolyPeaks::compute() runs them. Tests compare
// each with its plain twin in tests/output/plain_poly.cpp. Benchmarks time each alone.
namespace Quillet {

/// Storage of ChannelPeaks, an entry for each base.
struct ChannelPeakArrays {
  std::unique_ptr<std::int32_t[]> positions;
  std::unique_ptr<std::uint32_t[]> heights;
  std::unique_ptr<std::int32_t[]> normalisedHeights;
};
using PeakTable = std::array<ChannelPeakArrays, channelCount>;

/// Storage of SecondPeaks, an entry for each base.
struct SecondPeakArrays {
  std::unique_ptr<char[]> bases;
  std::unique_ptr<std::int32_t[]> positions;
};

/// Stage 1: scales all samples so that the highest one becomes 65280, or 65279 by truncation.
void scaleToFullRange(Channels& channels);

/// The average peak height of each channel, a whole number; 0 for a channel without a peak.
using ChannelAverages = std::array<float, channelCount>;

/// Stage 2: computes each channel's average peak height in a fixed part of the trace, and scales
/// the channels that have one to the smallest average.
ChannelAverages balanceChannels(Channels& channels);

/// Stage 3: finds the highest maximum of each channel around each base: positions and heights.
/// `maxima` is working storage, channelCount entries a sample.
void findPeaks(const CalledTrace& trace, std::int16_t* maxima, PeakTable& peaks);

/// Entries of the working storage of stage 4.
std::size_t zeroWordCount(std::size_t pointCount);

/// Stage 4, for one channel: divides the area of every run of signal among the peaks in it, as
/// their normalised heights. `zeros` is working storage, zeroWordCount(samples.size()) entries.
void normaliseAreas(std::span<const std::uint16_t> samples, float average, std::int32_t baseCount,
                    std::uint64_t* zeros, ChannelPeakArrays& peaks);

/// Stage 5: chooses the highest peak among the other channels for each base.
void chooseSecondPeaks(const Tessaly::String& bases, const PeakTable& peaks,
                       SecondPeakArrays& second);

/// The truncated value, or -2147483648 when that does not fit (NaN included).
std::int32_t truncateToInt32(double value);

}  // namespace Quillet
