#pragma once

#include <string>

/// `size` bytes 0, 1, ... 250, 0, 1, ... Equal places of two blocks hold different bytes, since 251
/// divides no block size.
inline std::string countingBytes(int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(i % 251);
  return bytes;
}
