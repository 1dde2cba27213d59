#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/decimal.h"
#include "output/file_writer.h"

namespace Quillet {

// Lines that come by the hundred are put together in a block of memory, without a call of the
// writer for every word. What a line is made of puts its bytes at `text` and returns their end.

inline char* putCharacter(char* text, char character) {
  *text = character;
  return text + 1;
}

inline char* putWord(char* text, char character) {
  return putCharacter(putCharacter(text, character), ' ');
}

inline char* putWord(char* text, std::int32_t value) {
  return putCharacter(Tessaly::putDecimal(text, value), ' ');
}

inline char* putLine(char* text, std::int32_t value) {
  return putCharacter(Tessaly::putDecimal(text, value), '\n');
}

/// Writes `count` lines. `put(text, i)` puts line i at `text`, touching at most `longestLine` bytes
/// from there on, and returns its end.
template <std::size_t longestLine, typename Put>
void writeLines(Tessaly::FileWriter& writer, std::int32_t count, Put put) {
  constexpr std::ptrdiff_t handedOver = 1024;  // bytes, or a little more
  char block[handedOver + longestLine];
  char* text = block;
  for (std::int32_t i = 0; i < count; ++i) {
    text = put(text, i);
    if (text - block < handedOver && i + 1 < count) continue;
    writer.writeBytes(block, static_cast<std::int32_t>(text - block));  // fits: at most the block
    text = block;
  }
}

}  // namespace Quillet
