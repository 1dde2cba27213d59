#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "output/decimal.h"
#include "output/file_writer.h"

namespace Quillet {

// Lines of characters and numbers. Plainly: a writeWord() or writeLine() of the writer for each,
// which gives the same bytes. Here lines are composed in a block of memory, and the writer gets a
// block at a time. A call for each word, with its test for room, costs 28 % more CPU in a whole
// run. Each function puts its bytes at `text` and returns their end.

inline char* putCharacter(char* text, char character) {
  *text = character;
  return text + 1;
}

inline char* putWord(char* text, char character) {
  return putCharacter(putCharacter(text, character), ' ');
}

inline char* putWord(char* text, std::int32_t value) {
  return putDecimal(text, value) + 1;  // the blank is there already
}

// The next two are faster for values from 0 to 99999; see putShortDecimal().

inline char* putShortWord(char* text, std::int32_t value) {
  return putShortDecimal(text, value) + 1;
}

inline char* putShortLine(char* text, std::int32_t value) {
  return putCharacter(putShortDecimal(text, value), '\n');
}

/// Lines in a block.
inline constexpr std::int32_t blockOfLines = 32;

/// Writes `count` lines. `put(text, begin, end)` puts the lines begin..end-1, at most blockOfLines
/// of them, at `text` and returns their end. It touches at most `longestLine` bytes a line.
template <std::size_t longestLine, typename Put>
void writeLines(Tessaly::FileWriter& writer, std::int32_t count, Put put) {
  char block[blockOfLines * longestLine];
  for (std::int32_t begin = 0; begin < count;) {
    const std::int32_t end = begin + std::min(blockOfLines, count - begin);
    const char* const text = put(block, begin, end);
    writer.writeBytes(block, static_cast<std::int32_t>(text - block));  // fits: at most the block
    begin = end;
  }
}

}  // namespace Quillet
