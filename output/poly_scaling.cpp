#include <algorithm>

#include "output/poly_peaks.h"

namespace Quillet {

namespace {

std::uint16_t largestSample(const std::uint16_t* samples, std::size_t count) {
  std::uint16_t largest = 0;
  for (std::size_t i = 0; i < count; ++i) largest = std::max(largest, samples[i]);
  return largest;
}

/// Multiplies every sample; the factor must leave the largest one within 16 bits.
void scaleSamples(std::uint16_t* samples, std::size_t count, double factor) {
  if (factor == 1.0) return;
  for (std::size_t i = 0; i < count; ++i) {
    // Truncates. By way of 32 signed bits, since processors convert to those several at a time.
    samples[i] = static_cast<std::uint16_t>(static_cast<std::int32_t>(factor * samples[i]));
  }
}

// The stretch of the trace that the channel balance is taken from, in sample indices.
constexpr std::uint32_t balanceFirstIndex = 1499;
constexpr std::uint32_t balanceLastIndex  = 2500;
static_assert(summedSignalSize == balanceLastIndex + 1);

/// The maxima of the summed signal at which one channel was the highest.
struct PeakTally {
  std::int32_t count        = 0;
  std::uint32_t heightTotal = 0;

  float averageHeight() const {
    if (count == 0) return 0.0F;
    const std::uint32_t average = heightTotal / static_cast<std::uint32_t>(count);
    return static_cast<float>(average);
  }
};

/// Adds up the four channels into summed[1499..last]; the index past the last sample reads 0.
void sumChannels(std::uint16_t* const (&channels)[4], std::uint32_t pointCount, std::uint32_t last,
                 std::uint16_t* summed) {
  for (std::uint32_t k = balanceFirstIndex; k <= last; ++k) {
    std::uint32_t sum = 0;
    if (k < pointCount) {
      for (const std::uint16_t* samples : channels) sum += samples[k];
    }
    // Deliberate: the sum wraps modulo 65536.
    summed[k] = static_cast<std::uint16_t>(sum);
  }
}

void tallyHighest(std::uint16_t* const (&channels)[4], std::uint32_t k, PeakTally (&tallies)[4]) {
  std::uint16_t best = 0;
  int highest        = noChannel;
  for (int channel = 0; channel < 4; ++channel) {
    if (channels[channel][k] <= best) continue;
    best    = channels[channel][k];
    highest = channel;
  }
  if (highest == noChannel) return;
  ++tallies[highest].count;
  tallies[highest].heightTotal += best;
}

}  // namespace

void scaleToFullRange(std::uint16_t* const (&channels)[4], std::uint32_t pointCount) {
  std::uint16_t largest = 0;
  for (const std::uint16_t* samples : channels) {
    largest = std::max(largest, largestSample(samples, pointCount));
  }
  const double factor = largest == 0 ? 1.0 : 65280.0 / largest;
  for (std::uint16_t* samples : channels) scaleSamples(samples, pointCount, factor);
}

void balanceChannels(std::uint16_t* const (&channels)[4], std::uint32_t pointCount,
                     std::uint16_t* summedSignal, float (&averages)[4]) {
  const std::uint32_t last = std::min(pointCount, balanceLastIndex);
  sumChannels(channels, pointCount, last, summedSignal);

  PeakTally tallies[4];
  for (std::uint32_t k = balanceFirstIndex + 2; k < last; ++k) {
    const std::uint16_t middle = summedSignal[k - 1];
    // Deliberate: the maximum is at k - 1, but the channels are compared at k.
    if (summedSignal[k - 2] < middle && summedSignal[k] < middle) {
      tallyHighest(channels, k, tallies);
    }
  }

  // A channel that was tallied has an average of at least 1, so that no division is by 0.
  float smallest = 1.0e30F;
  for (int channel = 0; channel < 4; ++channel) {
    averages[channel] = tallies[channel].averageHeight();
    if (tallies[channel].count != 0) smallest = std::min(smallest, averages[channel]);
  }
  for (int channel = 0; channel < 4; ++channel) {
    if (averages[channel] == 0.0F) continue;
    const double factor = static_cast<double>(smallest) / static_cast<double>(averages[channel]);
    scaleSamples(channels[channel], pointCount, factor);
  }
}

}  // namespace Quillet
