#include "output/poly_peaks.h"

#include <algorithm>

#include "foundation/channels.h"

namespace Quillet {

namespace {

// For each called channel; those of noChannel are never used.
constexpr unsigned char otherChannels[noChannel + 1][3] = {
    {1, 2, 3}, {0, 2, 3}, {0, 1, 3}, {0, 1, 2}, {0, 0, 0}};

}  // namespace

PolyPeaks::PolyPeaks()
    : summedSignal_(std::make_unique_for_overwrite<std::uint16_t[]>(summedSignalSize)) {}

void PolyPeaks::reserve(std::size_t pointCount, std::size_t baseCount) {
  if (zeros_ == nullptr || pointCount > pointCapacity_) {
    pointCapacity_ = 0;
    maxima_ = std::make_unique_for_overwrite<std::int16_t[]>(4 * pointCount);
    zeros_ = std::make_unique_for_overwrite<std::uint64_t[]>(zeroWordCount(pointCount));
    pointCapacity_ = pointCount;
  }
  if (baseCount > baseCapacity_) {
    baseCapacity_ = 0;
    for (int channel = 0; channel < 4; ++channel) {
      peakPos_[channel] = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
      peakAmp_[channel] = std::make_unique_for_overwrite<std::uint32_t[]>(baseCount);
      normAmp_[channel] = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
    }
    secondBase_ = std::make_unique_for_overwrite<char[]>(baseCount);
    secondPos_ = std::make_unique_for_overwrite<std::int32_t[]>(baseCount);
    baseCapacity_ = baseCount;
  }
}

// A file can claim millions of samples: the trace behind it needs that memory itself.
void PolyPeaks::releaseLongTrace() {
  if (pointCapacity_ <= keptPointCount) return;
  pointCapacity_ = 0;
  maxima_.reset();
  zeros_.reset();
}

void PolyPeaks::compute(std::uint16_t* const (&channels)[4], std::uint32_t pointCount,
                        const Tessaly::String& bases, const std::int32_t* peaks) {
  reserve(pointCount, static_cast<std::size_t>(bases.length()));

  float averages[4];
  scaleToFullRange(channels, pointCount);
  balanceChannels(channels, pointCount, summedSignal_.get(), averages);

  findPeaks({channels, pointCount, bases, peaks}, maxima_.get(),
            {peakPos_[0].get(), peakPos_[1].get(), peakPos_[2].get(), peakPos_[3].get()},
            {peakAmp_[0].get(), peakAmp_[1].get(), peakAmp_[2].get(), peakAmp_[3].get()});

  for (int channel = 0; channel < 4; ++channel) {
    normaliseAreas(channels[channel], pointCount, averages[channel], peakPos(channel),
                   peakAmp(channel), bases.length(), zeros_.get(), normAmp_[channel].get());
  }

  chooseSecondPeaks(bases, {peakPos(0), peakPos(1), peakPos(2), peakPos(3)},
                    {peakAmp(0), peakAmp(1), peakAmp(2), peakAmp(3)}, secondBase_.get(),
                    secondPos_.get());
  releaseLongTrace();
}

void chooseSecondPeaks(const Tessaly::String& bases, const std::int32_t* const (&peakPos)[4],
                       const std::uint32_t* const (&peakAmp)[4], char* secondBase,
                       std::int32_t* secondPos) {
  for (std::int32_t i = 0; i < bases.length(); ++i) {
    // No jump hangs on the bases or on the signal here: the processor could not foresee it.
    const int called = channelOf(bases[i]);
    std::uint64_t largest = 0;  // a height, and behind it what is larger for earlier channels
    for (const unsigned channel : otherChannels[called]) {
      largest = std::max(largest, std::uint64_t{peakAmp[channel][i]} << 2 | (3 - channel));
    }
    const auto second = static_cast<int>(3 - (largest & 3));
    const std::int32_t position = peakPos[second][i];
    const bool found = (largest > 3) & (called != noChannel);  // a height of 0 is no peak
    secondBase[i] = channelLetters[found ? second : noChannel];
    secondPos[i] = found ? position : 0;
  }
}

}  // namespace Quillet
