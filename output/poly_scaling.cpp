#include <algorithm>
#include <span>

#include "foundation/channels.h"
#include "output/poly_peaks.h"
#include "output/sample_scaling.h"

namespace Quillet {

namespace {

std::uint16_t largestSample(std::uint16_t* const (&channels)[4], std::size_t count) {
  // Side by side, since every maximum waits for the one before it in its channel.
  std::uint16_t a = 0;
  std::uint16_t c = 0;
  std::uint16_t g = 0;
  std::uint16_t t = 0;
  for (std::size_t i = 0; i < count; ++i) {
    a = std::max(a, channels[0][i]);
    c = std::max(c, channels[1][i]);
    g = std::max(g, channels[2][i]);
    t = std::max(t, channels[3][i]);
  }
  return std::max({a, c, g, t});
}

constexpr std::uint32_t fullRange = 65280;  // what the highest sample is to come to
constexpr std::uint32_t largestSampleValue = 65535;

/// Multiplies every sample by a quotient of whole numbers, by way of `double` as seen from outside.
/// Both numbers are 1..65535, no sample exceeds `bound`, and this times the quotient is at most
/// 65535.
void scaleByQuotient(std::span<std::uint16_t* const> channels, std::size_t count,
                     std::uint32_t numerator, std::uint32_t denominator, std::uint32_t bound) {
  if (numerator == denominator) return;
  const auto factor = fixedFactor(numerator, denominator, bound);
  const double quotient = static_cast<double>(numerator) / denominator;
  for (std::uint16_t* samples : channels) {
    if (factor) {
      scaleSamples(samples, count, *factor);
    } else {
      scaleSamples(samples, count, quotient);
    }
  }
}

// The stretch of the trace that the channel balance is taken from, in sample indices.
constexpr std::uint32_t balanceFirstIndex = 1499;
constexpr std::uint32_t balanceLastIndex = 2500;
static_assert(summedSignalSize == balanceLastIndex + 1);

/// The maxima of the summed signal at which one channel was the highest.
struct PeakTally {
  std::int32_t count = 0;
  std::uint32_t heightTotal = 0;

  /// 1..65535; 0 when there is none.
  std::uint32_t averageHeight() const {
    return count == 0 ? 0 : heightTotal / static_cast<std::uint32_t>(count);
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

/// Lists the indices behind the strict maxima of summed[..last] and returns their number.
std::size_t listMaxima(const std::uint16_t* summed, std::uint32_t last, std::uint32_t* indices) {
  // No jump hangs on the signal, here and below: the processor could not foresee it.
  std::size_t count = 0;
  for (std::uint32_t k = balanceFirstIndex + 2; k < last; ++k) {
    const std::uint16_t middle = summed[k - 1];
    const bool isMaximum = (summed[k - 2] < middle) & (summed[k] < middle);
    indices[count] = k;
    count += isMaximum ? 1 : 0;
  }
  return count;
}

/// Counts the sample at `k` for the first of the channels that have the highest one there.
void tallyHighest(std::uint16_t* const (&channels)[4], std::uint32_t k, PeakTally (&tallies)[4]) {
  std::uint32_t best = 0;  // a sample, and behind it what is larger for earlier channels
  for (std::uint32_t channel = 0; channel < 4; ++channel) {
    best = std::max(best, std::uint32_t{channels[channel][k]} << 2 | (3 - channel));
  }
  const std::uint32_t height = best >> 2;
  PeakTally& tally = tallies[3 - (best & 3)];
  tally.count += height != 0 ? 1 : 0;
  tally.heightTotal += height;
}

}  // namespace

void scaleToFullRange(std::uint16_t* const (&channels)[4], std::uint32_t pointCount) {
  const std::uint16_t largest = largestSample(channels, pointCount);
  if (largest == 0) return;
  scaleByQuotient(channels, pointCount, fullRange, largest, largest);
}

void balanceChannels(std::uint16_t* const (&channels)[4], std::uint32_t pointCount,
                     std::uint16_t* summedSignal, float (&averages)[4]) {
  const std::uint32_t last = std::min(pointCount, balanceLastIndex);
  sumChannels(channels, pointCount, last, summedSignal);

  PeakTally tallies[4];
  // Deliberate: a maximum is at k - 1, but the channels are compared at k.
  std::uint32_t indices[summedSignalSize - balanceFirstIndex];
  const std::size_t maximumCount = listMaxima(summedSignal, last, indices);
  for (std::size_t i = 0; i < maximumCount; ++i) tallyHighest(channels, indices[i], tallies);

  std::uint32_t heights[4];
  std::uint32_t smallest = largestSampleValue;
  for (int channel = 0; channel < 4; ++channel) {
    heights[channel] = tallies[channel].averageHeight();
    averages[channel] = static_cast<float>(heights[channel]);
    if (heights[channel] != 0) smallest = std::min(smallest, heights[channel]);
  }
  for (int channel = 0; channel < 4; ++channel) {
    if (heights[channel] == 0) continue;
    scaleByQuotient({&channels[channel], 1}, pointCount, smallest, heights[channel],
                    largestSampleValue);
  }
}

}  // namespace Quillet
