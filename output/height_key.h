#pragma once

#include <cstdint>
#include <type_traits>

namespace Quillet {

/// A height and an index in one number, so that one maximum finds both. The largest key has the
/// greatest height; among equal heights it has the first index.
///
/// The lowest `indexBits` bits hold the index with all bits inverted, so that an earlier index
/// gives a larger key. The height is above them. With 4 bits, height 9 at index 3 is 9 * 16 + 12.
/// Heights and keys are whole numbers, or vectors of them; a height times 2^indexBits fits.
template <int indexBits>
struct HeightKey {
  static constexpr std::conditional_t<(indexBits < 31), std::int32_t, std::int64_t> largestIndex =
      (std::int64_t{1} << indexBits) - 1;

  template <typename Height>
  static constexpr Height of(Height height, Height index) {
    return height << indexBits | (~index & largestIndex);
  }
  template <typename Key>
  static constexpr Key height(Key key) {
    return key >> indexBits;
  }
  template <typename Key>
  static constexpr Key index(Key key) {
    return ~key & largestIndex;
  }
};

}  // namespace Quillet
