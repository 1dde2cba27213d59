#include <algorithm>

#include "output/poly_peaks.h"

namespace Quillet {

namespace {

/// Copies the samples that are maxima enough to be a peak, and writes 0 for all others.
///
/// A maximum stands more than 3 above its neighbours when 2 * sample - left - right > 3. In whole
/// numbers that is: at least 2 above the neighbours' mean, rounded up, which needs 16 bits only.
void markMaxima(const std::uint16_t* samples, std::size_t count, std::uint16_t* maxima) {
  const auto mark = [](std::uint16_t left, std::uint16_t sample, std::uint16_t right) {
    const auto mean   = static_cast<std::uint16_t>((left + right + 1) >> 1);
    const auto higher = sample > mean ? sample : mean;
    const auto excess = static_cast<std::uint16_t>(higher - mean);
    return excess > 1 ? sample : std::uint16_t{0};
  };
  if (count == 0) return;
  if (count == 1) {
    maxima[0] = mark(0, samples[0], 0);
    return;
  }
  maxima[0] = mark(0, samples[0], samples[1]);
  for (std::size_t i = 1; i + 1 < count; ++i) {
    maxima[i] = mark(samples[i - 1], samples[i], samples[i + 1]);
  }
  maxima[count - 1] = mark(samples[count - 2], samples[count - 1], 0);
}

/// Sample indices, both included, among which a base seeks its maximum; none when last < first.
struct SearchRange {
  std::int64_t first;
  std::int64_t last;
};

std::int64_t midpoint(std::int32_t left, std::int32_t right) {
  return (std::int64_t{left} + right) / 2;  // truncates toward zero
}

/// From midway to the base before (for the first base, from half its own peak) to midway to the
/// base after, without the two end points, which only serve as neighbours, and without what lies
/// outside the trace, where nothing is a maximum.
SearchRange searchRange(const CalledTrace& trace, std::int32_t i) {
  const std::int32_t* peaks = trace.peaks;
  const std::int64_t low    = i == 0 ? peaks[0] / 2 : midpoint(peaks[i - 1], peaks[i]);
  const std::int64_t high   = midpoint(peaks[i], peaks[i + 1]);
  return {std::max(low + 1, std::int64_t{0}),
          std::min(high - 1, std::int64_t{trace.pointCount} - 1)};
}

/// The highest maximum of a range; a height of 0 means that there is none.
struct Peak {
  std::uint32_t height  = 0;
  std::int32_t position = 0;
};

/// Deliberate: a peak's position is the index after its maximum.
std::int32_t positionAfter(std::uint32_t maximumIndex) {
  // Fits: the maximum lies before the midpoint of two 32-bit indices.
  return static_cast<std::int32_t>(maximumIndex + 1);
}

/// Finds the first highest maximum of any range in logarithmic time.
///
/// A tree over blocks of samples. A key has the height in its upper half and the distance from the
/// largest index in its lower half, so that the largest key is the first of the highest maxima.
/// Borrows the maxima of the channel that build() was last called with.
class MaximumTree {
 public:
  explicit MaximumTree(std::size_t pointCount)
      : pointCount_(pointCount),
        blockCount_((pointCount + blockSize - 1) / blockSize),
        keys_(std::make_unique_for_overwrite<std::uint64_t[]>(2 * blockCount_)) {}

  void build(const std::uint16_t* maxima) {
    maxima_ = maxima;
    for (std::size_t block = 0; block < blockCount_; ++block) {
      const std::size_t start    = block * blockSize;
      keys_[blockCount_ + block] = scan(start, std::min(start + blockSize, pointCount_));
    }
    for (std::size_t k = blockCount_; k-- > 1;) keys_[k] = std::max(keys_[2 * k], keys_[2 * k + 1]);
  }

  Peak find(const SearchRange& range) const {
    if (range.first > range.last) return {};
    const auto first             = static_cast<std::size_t>(range.first);
    const auto end               = static_cast<std::size_t>(range.last + 1);
    const std::size_t firstBlock = (first + blockSize - 1) / blockSize;
    const std::size_t endBlock   = end / blockSize;
    if (firstBlock >= endBlock) return peakOf(scan(first, end));

    std::uint64_t best =
        std::max(scan(first, firstBlock * blockSize), scan(endBlock * blockSize, end));
    std::size_t left  = firstBlock + blockCount_;
    std::size_t right = endBlock + blockCount_;
    for (; left < right; left /= 2, right /= 2) {
      if (left % 2 != 0) best = std::max(best, keys_[left++]);
      if (right % 2 != 0) best = std::max(best, keys_[--right]);
    }
    return peakOf(best);
  }

 private:
  static constexpr std::size_t blockSize      = 32;
  static constexpr std::uint32_t largestIndex = 0xFFFFFFFF;

  std::uint64_t scan(std::size_t start, std::size_t end) const {
    std::uint64_t best = 0;
    for (std::size_t i = start; i < end; ++i) {
      best = std::max(best, std::uint64_t{maxima_[i]} << 32 | (largestIndex - i));
    }
    return best;
  }

  static Peak peakOf(std::uint64_t key) {
    const auto height = static_cast<std::uint32_t>(key >> 32);
    if (height == 0) return {};
    return {height, positionAfter(largestIndex - static_cast<std::uint32_t>(key))};
  }

  std::size_t pointCount_;
  std::size_t blockCount_;
  std::unique_ptr<std::uint64_t[]> keys_;  // the blocks' in the upper half, each above its two
  const std::uint16_t* maxima_ = nullptr;
};

/// Looks through the ranges of the bases sample by sample, all four channels side by side. Stops
/// when the ranges together are too long, and returns the number of bases done.
std::int32_t searchByWalking(const CalledTrace& trace, std::uint16_t* const (&maxima)[4],
                             std::int32_t* const (&peakPos)[4],
                             std::uint32_t* const (&peakAmp)[4]) {
  // The ranges of ascending peaks do not overlap; some disorder is still cheapest to walk.
  const std::int32_t baseCount = trace.bases.length();
  std::int64_t samplesLeft     = 4 * (std::int64_t{trace.pointCount} + baseCount);

  const std::uint16_t* const heights[4] = {maxima[0], maxima[1], maxima[2], maxima[3]};
  for (std::int32_t i = 0; i < baseCount; ++i) {
    const SearchRange range = searchRange(trace, i);
    samplesLeft -= std::max(range.last - range.first + 1, std::int64_t{0});
    if (samplesLeft < 0) return i;

    // No branch hangs on the signal here: the processor could not foresee it.
    std::uint32_t best[4]      = {};
    std::uint32_t bestAfter[4] = {};
    for (std::int64_t k = range.first; k <= range.last; ++k) {
      for (int channel = 0; channel < 4; ++channel) {
        const std::uint32_t height = heights[channel][k];
        const bool isHigher        = height > best[channel];
        best[channel]              = isHigher ? height : best[channel];
        bestAfter[channel] = isHigher ? static_cast<std::uint32_t>(k + 1) : bestAfter[channel];
      }
    }
    for (int channel = 0; channel < 4; ++channel) {
      peakAmp[channel][i] = best[channel];
      peakPos[channel][i] = static_cast<std::int32_t>(bestAfter[channel]);
    }
  }
  return baseCount;
}

/// Answers the ranges of the bases from `firstBase` on, however long they are.
void searchByTree(const CalledTrace& trace, std::int32_t firstBase,
                  std::uint16_t* const (&maxima)[4], std::int32_t* const (&peakPos)[4],
                  std::uint32_t* const (&peakAmp)[4]) {
  MaximumTree tree(trace.pointCount);
  for (int channel = 0; channel < 4; ++channel) {
    tree.build(maxima[channel]);
    for (std::int32_t i = firstBase; i < trace.bases.length(); ++i) {
      const SearchRange range = searchRange(trace, i);
      const Peak peak         = tree.find(range);
      peakAmp[channel][i]     = peak.height;
      peakPos[channel][i]     = peak.position;
    }
  }
}

/// The called base always has a position: where no peak was found, that of the call itself.
void fallBackToCalls(const CalledTrace& trace, std::int32_t* const (&peakPos)[4],
                     std::uint32_t* const (&peakAmp)[4]) {
  for (std::int32_t i = 0; i < trace.bases.length(); ++i) {
    const int called = channelOf(trace.bases[i]);
    if (called == noChannel || peakAmp[called][i] != 0) continue;

    const std::int32_t position = trace.peaks[i];
    const bool inside           = position >= 0 && std::int64_t{position} < trace.pointCount;
    peakPos[called][i]          = position;
    peakAmp[called][i]          = inside ? trace.channels[called][position] : 0;
  }
}

}  // namespace

void findPeaks(const CalledTrace& trace, std::uint16_t* const (&maxima)[4],
               std::int32_t* const (&peakPos)[4], std::uint32_t* const (&peakAmp)[4]) {
  for (int channel = 0; channel < 4; ++channel) {
    markMaxima(trace.channels[channel], trace.pointCount, maxima[channel]);
  }
  const std::int32_t done = searchByWalking(trace, maxima, peakPos, peakAmp);
  if (done < trace.bases.length()) searchByTree(trace, done, maxima, peakPos, peakAmp);
  fallBackToCalls(trace, peakPos, peakAmp);
}

}  // namespace Quillet
