#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/// The levels of one channel of a picture, from its bytes.
inline std::vector<int> levelsOf(const std::vector<int>& bytes) {
  std::vector<int> levels(3);  // what is expected of the first is 0
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const int doubled = 4 * levels[i + 2] - 3 * levels[i + 1] + levels[i];
    const int expected = doubled < 0 ? 0 : std::min(doubled / 2, 255);
    levels.push_back((expected + bytes[i]) % 256);
  }
  levels.erase(levels.begin(), levels.begin() + 3);
  return levels;
}
