#include "output/poly_peaks.h"

#include <algorithm>

#include "output/height_key.h"
#include "output/poly_stages.h"

namespace Quillet {

namespace {

// Larger than any instrument's trace.
constexpr std::size_t keptPointCount = 1 << 18;
constexpr std::size_t keptBaseCount = 1 << 15;

// The other channels of each called channel. The last row belongs to noChannel and has no meaning.
constexpr unsigned char otherChannels[noChannel + 1][3] = {
    {1, 2, 3}, {0, 2, 3}, {0, 1, 3}, {0, 1, 2}, {0, 0, 0}};

}  // namespace

void PolyPeaks::reserve(std::size_t pointCount, std::size_t baseCount) {
  if (zeros_ == nullptr || pointCount > pointCapacity_) {
    pointCapacity_ = 0;
    maxima_ = std::make_unique_for_overwrite<std::int16_t[]>(channelCount * pointCount);
    zeros_ = std::make_unique_for_overwrite<std::uint64_t[]>(zeroWordCount(pointCount));
    pointCapacity_ = pointCount;
  }
  if (baseCount > baseCapacity_) {
    baseCapacity_ = 0;
    for (ChannelPeaks& peaks : peaks_) {
      peaks.positions = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
      peaks.heights = std::make_unique_for_overwrite<std::uint32_t[]>(baseCount);
      peaks.normalisedHeights = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
    }
    secondPeaks_.bases = std::make_unique_for_overwrite<char[]>(baseCount);
    secondPeaks_.positions = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
    baseCapacity_ = baseCount;
  }
}

void PolyPeaks::releaseLongTrace() {
  if (pointCapacity_ > keptPointCount || baseCapacity_ > keptBaseCount) *this = PolyPeaks();
}

void PolyPeaks::compute(const CalledTrace& trace) {
  Channels& channels = trace.channels;
  const std::int32_t baseCount = trace.bases.length();
  reserve(channels.pointCount(), static_cast<std::size_t>(baseCount));

  scaleToFullRange(channels);
  const ChannelAverages averages = balanceChannels(channels);
  findPeaks(trace, maxima_.get(), peaks_);
  for (int channel = 0; channel < channelCount; ++channel) {
    const auto index = static_cast<std::size_t>(channel);
    normaliseAreas(channels[channel], averages[index], baseCount, zeros_.get(), peaks_[index]);
  }
  chooseSecondPeaks(trace.bases, peaks_, secondPeaks_);
}

void chooseSecondPeaks(const Tessaly::String& bases, const PeakTable& peaks, SecondPeaks& second) {
  using Key = HeightKey<2>;
  const std::uint32_t* heights[channelCount];
  const std::int32_t* positions[channelCount];
  for (std::size_t channel = 0; channel < channelCount; ++channel) {
    heights[channel] = peaks[channel].heights.get();
    positions[channel] = peaks[channel].positions.get();
  }
  // Locals: a store to the letters may alias the members and force reloads.
  char* const secondBases = second.bases.get();
  std::int32_t* const secondPositions = second.positions.get();
  for (std::int32_t i = 0; i < bases.length(); ++i) {
    // Branch-free: the bases and the signal are unpredictable.
    const int called = channelOf(bases[i]);
    std::uint64_t best = 0;
    for (const unsigned channel : otherChannels[called]) {
      best = std::max(best, Key::of(std::uint64_t{heights[channel][i]}, std::uint64_t{channel}));
    }
    const auto channel = Key::index(best);
    const std::int32_t position = positions[channel][i];
    const bool found = (Key::height(best) != 0) & (called != noChannel);  // a height of 0 is none
    secondBases[i] = channelLetters[found ? channel : std::uint64_t{noChannel}];
    secondPositions[i] = found ? position : 0;
  }
}

}  // namespace Quillet
