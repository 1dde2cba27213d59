#pragma once

namespace Quillet {

/// A height and an index in one number, so that one maximum finds both: the largest key is that of
/// the first of the highest.
///
/// The height stands above the lowest `indexBits` bits. These hold the distance from the largest
/// index, which is larger for earlier ones. With 4 bits, height 9 at index 3 is 9 * 16 + 12.
/// Heights and keys are whole numbers or vectors of them; a height times 2^indexBits fits.
template <int indexBits>
struct HeightKey {
  static constexpr auto largestIndex = (1ULL << indexBits) - 1;

  template <typename Height, typename Index>
  static constexpr Height of(Height height, Index index) {
    return height << indexBits | (static_cast<Height>(largestIndex) - index);
  }
  template <typename Key>
  static constexpr Key height(Key key) {
    return key >> indexBits;
  }
  template <typename Key>
  static constexpr Key index(Key key) {
    return static_cast<Key>(largestIndex) - (key & static_cast<Key>(largestIndex));
  }
};

}  // namespace Quillet
