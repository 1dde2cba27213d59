#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/channels.h"
#include "output/height_key.h"

namespace Quillet {

// findPeaks() marks the maxima of all channels in one array, with four entries for each sample: the
// height where a channel has a maximum, 0 elsewhere. An entry is stored as height - 32768, because
// the vector comparisons of x86-64 are signed.

inline std::int16_t storedHeight(std::uint16_t height) {
  return static_cast<std::int16_t>(height ^ 0x8000);
}

inline std::uint16_t heightOf(std::int16_t stored) {
  return static_cast<std::uint16_t>(stored ^ 0x8000);
}

/// The samples among which a base's maximum is searched, from `first` to `last`, both included.
/// Empty when last < first.
struct SearchRange {
  std::int64_t first;
  std::int64_t last;
};

/// The highest maximum of a range, the first of equal ones. A height of 0 means that there is none.
struct Peak {
  std::uint32_t height = 0;
  std::int32_t position = 0;
};

/// Deliberate: a peak's position is the index after its maximum.
inline std::int32_t positionAfter(std::uint32_t maximumIndex) {
  // Fits: the maximum lies before the midpoint of two 32-bit indices.
  return static_cast<std::int32_t>(maximumIndex + 1);
}

/// Finds the highest maximum of any range, the first of equal ones, in logarithmic time.
///
/// A tree over blocks of samples; each node holds the largest key of its blocks. Call build()
/// first; find() reads the maxima that build() was given.
class MaximumTree {
 public:
  explicit MaximumTree(std::size_t pointCount)
      : pointCount_(pointCount),
        blockCount_(pointCount / blockSize + 1),
        keys_(std::make_unique_for_overwrite<std::uint64_t[]>(2 * blockCount_)) {}

  /// Builds the tree for one channel. `maxima` holds the entries of all channels.
  void build(const std::int16_t* maxima, int channel) {
    maxima_ = maxima + channel;
    for (std::size_t block = 0; block < blockCount_; ++block) {
      const std::size_t start = block * blockSize;
      keys_[blockCount_ + block] = scan(start, std::min(start + blockSize, pointCount_));
    }
    // Node k has the children 2k and 2k + 1; the blocks are the upper half.
    for (std::size_t k = blockCount_; k-- > 1;) keys_[k] = std::max(keys_[2 * k], keys_[2 * k + 1]);
  }

  /// The range lies inside the trace.
  Peak find(const SearchRange& range) const {
    if (range.first > range.last) return {};
    const auto first = static_cast<std::size_t>(range.first);
    const auto end = static_cast<std::size_t>(range.last + 1);
    const std::size_t firstBlock = (first + blockSize - 1) / blockSize;
    const std::size_t endBlock = end / blockSize;
    if (firstBlock >= endBlock) return peakOf(scan(first, end));

    std::uint64_t best =
        std::max(scan(first, firstBlock * blockSize), scan(endBlock * blockSize, end));
    std::size_t left = firstBlock + blockCount_;
    std::size_t right = endBlock + blockCount_;
    for (; left < right; left /= 2, right /= 2) {
      if (left % 2 != 0) best = std::max(best, keys_[left++]);
      if (right % 2 != 0) best = std::max(best, keys_[--right]);
    }
    return peakOf(best);
  }

 private:
  static constexpr std::size_t blockSize = 32;

  using Key = HeightKey<32>;

  /// The largest key of the samples start..end-1; 0 when there are none.
  std::uint64_t scan(std::size_t start, std::size_t end) const {
    std::uint64_t best = 0;
    for (std::size_t i = start; i < end; ++i) {
      best = std::max(
          best, Key::of(std::uint64_t{heightOf(maxima_[channelCount * i])}, std::uint64_t{i}));
    }
    return best;
  }

  static Peak peakOf(std::uint64_t key) {
    const auto height = static_cast<std::uint32_t>(Key::height(key));
    if (height == 0) return {};
    return {height, positionAfter(static_cast<std::uint32_t>(Key::index(key)))};
  }

  std::size_t pointCount_;
  std::size_t blockCount_;
  std::unique_ptr<std::uint64_t[]> keys_;  // of the nodes; see build()
  const std::int16_t* maxima_ = nullptr;   // the channel's first entry; its next one is four later
};

}  // namespace Quillet
