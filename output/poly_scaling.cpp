#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "output/height_key.h"
#include "output/poly_stages.h"
#include "output/sample_scaling.h"

namespace Quillet {

namespace {

/// The highest sample of all channels.
std::uint16_t largestSample(const Channels& channels) {
  const std::uint16_t* const samplesOfA = channels[0].data();
  const std::uint16_t* const samplesOfC = channels[1].data();
  const std::uint16_t* const samplesOfG = channels[2].data();
  const std::uint16_t* const samplesOfT = channels[3].data();
  const std::size_t count = channels.pointCount();
  // Four maxima in one loop: within a channel each one depends on the one before, so that the
  // processor would wait.
  std::uint16_t a = 0;
  std::uint16_t c = 0;
  std::uint16_t g = 0;
  std::uint16_t t = 0;
  for (std::size_t i = 0; i < count; ++i) {
    a = std::max(a, samplesOfA[i]);
    c = std::max(c, samplesOfC[i]);
    g = std::max(g, samplesOfG[i]);
    t = std::max(t, samplesOfT[i]);
  }
  return std::max({a, c, g, t});
}

constexpr std::uint32_t fullRange = 65280;  // what the highest sample is scaled to
constexpr std::uint32_t largestSampleValue = 65535;

/// Scales samples by numerator / denominator. The result is the truncated `double` product; it is
/// computed in whole numbers where these give the same. Both numbers are 1..65535. No sample
/// exceeds `bound`, and `bound` times the quotient is at most 65535.
class QuotientScaling {
 public:
  QuotientScaling(std::uint32_t numerator, std::uint32_t denominator, std::uint32_t bound)
      : isOne_(numerator == denominator),
        factor_(isOne_ ? std::nullopt : fixedFactor(numerator, denominator, bound)),
        quotient_(static_cast<double>(numerator) / denominator) {}

  void apply(std::span<std::uint16_t> samples) const {
    if (isOne_) return;
    if (factor_) {
      scaleSamples(samples.data(), samples.size(), *factor_);
    } else {
      scaleSamples(samples.data(), samples.size(), quotient_);
    }
  }

 private:
  bool isOne_;
  std::optional<FixedFactor> factor_;
  double quotient_;
};

// The samples from which the channel balance is computed.
constexpr std::uint32_t balanceFirstIndex = 1499;
constexpr std::uint32_t balanceLastIndex = 2500;

/// The sum of the four channels, by sample index; only entries from balanceFirstIndex on are set.
using SummedSignal = std::array<std::uint16_t, balanceLastIndex + 1>;

/// The maxima of the summed signal at which one channel was the highest.
struct PeakTally {
  std::int32_t count = 0;
  std::uint32_t heightTotal = 0;

  /// 1..65535; 0 when there is none.
  std::uint32_t averageHeight() const {
    return count == 0 ? 0 : heightTotal / static_cast<std::uint32_t>(count);
  }
};

/// Sums the four channels into summed[1499..last]; the sample after the last one counts as 0.
void sumChannels(const Channels& channels, std::uint32_t last, SummedSignal& summed) {
  for (std::uint32_t k = balanceFirstIndex; k <= last; ++k) {
    std::uint32_t sum = 0;
    if (k < channels.pointCount()) {
      for (int channel = 0; channel < channelCount; ++channel) sum += channels[channel][k];
    }
    // Deliberate: the sum wraps modulo 65536.
    summed[k] = static_cast<std::uint16_t>(sum);
  }
}

/// Lists the indices after the strict maxima of summed[..last] and returns their number.
std::size_t listMaxima(const SummedSignal& summed, std::uint32_t last, std::uint32_t* indices) {
  // Branch-free, here and below: the signal is unpredictable.
  std::size_t count = 0;
  for (std::uint32_t k = balanceFirstIndex + 2; k < last; ++k) {
    const std::uint16_t middle = summed[k - 1];
    const bool isAboveLeft = summed[k - 2] < middle;
    const bool isAboveRight = summed[k] < middle;
    const bool isMaximum = isAboveLeft & isAboveRight;
    indices[count] = k;
    count += isMaximum ? 1 : 0;
  }
  return count;
}

/// Adds the highest sample at `k` to the tally of its channel, the first of equal ones. A height of
/// 0 does not count.
void tallyHighest(const Channels& channels, std::uint32_t k,
                  std::array<PeakTally, channelCount>& tallies) {
  using Key = HeightKey<2>;
  std::uint32_t best = 0;
  for (int channel = 0; channel < channelCount; ++channel) {
    best = std::max(
        best, Key::of(std::uint32_t{channels[channel][k]}, static_cast<std::uint32_t>(channel)));
  }
  const std::uint32_t height = Key::height(best);
  PeakTally& tally = tallies[Key::index(best)];
  tally.count += height != 0 ? 1 : 0;
  tally.heightTotal += height;
}

}  // namespace

void scaleToFullRange(Channels& channels) {
  const std::uint16_t largest = largestSample(channels);
  if (largest == 0) return;
  const QuotientScaling scaling(fullRange, largest, largest);
  for (int channel = 0; channel < channelCount; ++channel) scaling.apply(channels[channel]);
}

ChannelAverages balanceChannels(Channels& channels) {
  const std::uint32_t last = std::min(channels.pointCount(), balanceLastIndex);
  SummedSignal summed;
  sumChannels(channels, last, summed);

  // Deliberate: a maximum is at k - 1, but the channels are compared at k.
  std::uint32_t indices[balanceLastIndex - balanceFirstIndex];
  const std::size_t maximumCount = listMaxima(summed, last, indices);
  std::array<PeakTally, channelCount> tallies;
  for (std::size_t i = 0; i < maximumCount; ++i) tallyHighest(channels, indices[i], tallies);

  ChannelAverages averages;
  std::uint32_t smallest = largestSampleValue;
  for (std::size_t channel = 0; channel < channelCount; ++channel) {
    const std::uint32_t height = tallies[channel].averageHeight();
    averages[channel] = static_cast<float>(height);
    if (height != 0) smallest = std::min(smallest, height);
  }
  for (std::size_t channel = 0; channel < channelCount; ++channel) {
    const std::uint32_t height = tallies[channel].averageHeight();
    if (height == 0) continue;
    QuotientScaling(smallest, height, largestSampleValue)
        .apply(channels[static_cast<int>(channel)]);
  }
  return averages;
}

}  // namespace Quillet
