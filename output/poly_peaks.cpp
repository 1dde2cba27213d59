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

struct PolyPeaks::Storage {
  PeakTable peaks;
  SecondPeakArrays second;
  std::size_t baseCapacity = 0;

  std::unique_ptr<std::int16_t[]> maxima;  // working storage of findPeaks
  std::unique_ptr<std::uint64_t[]> zeros;  // working storage of normaliseAreas
  std::size_t pointCapacity = 0;

  void reserve(std::size_t pointCount, std::size_t baseCount) {
    if (zeros == nullptr || pointCount > pointCapacity) {
      pointCapacity = 0;
      maxima = std::make_unique_for_overwrite<std::int16_t[]>(channelCount * pointCount);
      zeros = std::make_unique_for_overwrite<std::uint64_t[]>(zeroWordCount(pointCount));
      pointCapacity = pointCount;
    }
    if (baseCount > baseCapacity) {
      baseCapacity = 0;
      for (ChannelPeakArrays& channel : peaks) {
        channel.positions = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
        channel.heights = std::make_unique_for_overwrite<std::uint32_t[]>(baseCount);
        channel.normalisedHeights = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
      }
      second.bases = std::make_unique_for_overwrite<char[]>(baseCount);
      second.positions = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
      baseCapacity = baseCount;
    }
  }
};

PolyPeaks::PolyPeaks() : storage_(std::make_unique<Storage>()) {}
PolyPeaks::~PolyPeaks() = default;

void PolyPeaks::releaseLongTrace() {
  if (storage_->pointCapacity > keptPointCount || storage_->baseCapacity > keptBaseCount) {
    *storage_ = Storage();
  }
}

ChannelPeaks PolyPeaks::channel(int index) const {
  const ChannelPeakArrays& arrays = storage_->peaks[static_cast<std::size_t>(index)];
  return {.positions = arrays.positions.get(),
          .heights = arrays.heights.get(),
          .normalisedHeights = arrays.normalisedHeights.get()};
}

SecondPeaks PolyPeaks::secondPeaks() const {
  return {.bases = storage_->second.bases.get(), .positions = storage_->second.positions.get()};
}

void PolyPeaks::compute(const CalledTrace& trace) {
  Channels& channels = trace.channels;
  Storage& storage = *storage_;
  const std::int32_t baseCount = trace.bases.length();
  storage.reserve(channels.pointCount(), static_cast<std::size_t>(baseCount));

  scaleToFullRange(channels);
  const ChannelAverages averages = balanceChannels(channels);
  findPeaks(trace, storage.maxima.get(), storage.peaks);
  for (int channel = 0; channel < channelCount; ++channel) {
    const auto index = static_cast<std::size_t>(channel);
    normaliseAreas(channels[channel], averages[index], baseCount, storage.zeros.get(),
                   storage.peaks[index]);
  }
  chooseSecondPeaks(trace.bases, storage.peaks, storage.second);
}

void chooseSecondPeaks(const Tessaly::String& bases, const PeakTable& peaks,
                       SecondPeakArrays& second) {
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
