#include "trace/file_reader.h"

// Texts, lines and words.

#include <algorithm>
#include <cstring>

namespace Tessaly {

void FileReader::countLineFeed() {
  // Wraps modulo 2^32.
  lineCount_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(lineCount_) + 1);
}

/// Appends up to `count` bytes, block by block: memory grows with the bytes that are there, not
/// with `count`.
void FileReader::appendBytes(String& text, std::int32_t count) {
  std::int32_t appended = 0;
  while (appended < count) {
    if (isExhausted() && !refill()) break;
    const std::int32_t run = std::min(unreadCount(), count - appended);
    text.append(unread(), run);
    cursor_ += run;
    appended += run;
  }
}

/// Appends the bytes before the delimiter and consumes the delimiter; false when the file ends
/// first.
bool FileReader::appendUntil(String& text, char delimiter) {
  while (!isExhausted() || refill()) {
    const char* const start = unread();
    const void* const found =
        std::memchr(start, delimiter, static_cast<std::size_t>(unreadCount()));
    if (found != nullptr) {
      // Inside the block, whose size is 32-bit.
      const auto run = static_cast<std::int32_t>(static_cast<const char*>(found) - start);
      if (run > 0) text.append(start, run);
      cursor_ += run + 1;
      return true;
    }
    text.append(start, unreadCount());
    cursor_ = end_;
  }
  return false;
}

bool FileReader::readText(String& text, std::int32_t length) {
  if (hasEnded()) return false;
  text.clear();
  appendBytes(text, length);
  return true;
}

bool FileReader::readTextAt(std::int32_t position, String& text, std::int32_t length) {
  // Deliberate: once the end of the file has been reached, this read no longer seeks.
  if (hasEnded()) return false;
  text.clear();
  // Deliberate: a negative position gives an empty text and true.
  if (position < 0) return true;
  return seek(position) && readText(text, length);
}

bool FileReader::readLine(String& line) {
  // Deliberate: when the file ends where a block ends, one more, empty line is read. Only the next
  // block shows that nothing follows.
  if (hasEnded()) return false;
  line.clear();
  if (appendUntil(line, '\n')) countLineFeed();
  return true;
}

bool FileReader::readLineAt(std::int32_t position, String& line) {
  return seek(position) && readLine(line);
}

bool FileReader::readLineAfter(std::string_view label, String& rest) {
  std::size_t matched = 0;  // characters of the label, at the start of the line
  for (std::int8_t character = 0; readInt8(character);) {
    if (character == label[matched]) {
      if (++matched < label.size()) continue;
      // readLine() is false when the file ends right after the label.
      if (!readLine(rest)) rest.clear();
      return true;
    }
    matched = 0;
    if (character != '\n' && !skipUntil('\n')) return false;
    countLineFeed();
  }
  return false;
}

bool FileReader::readUntil(String& text, char delimiter) {
  if (hasEnded()) return false;
  text.clear();
  appendUntil(text, delimiter);
  return true;
}

bool FileReader::skipUntil(char delimiter) {
  while (!isExhausted() || refill()) {
    const void* const found =
        std::memchr(unread(), delimiter, static_cast<std::size_t>(unreadCount()));
    if (found != nullptr) {
      // Inside the block, whose size is 32-bit.
      cursor_ += static_cast<std::int32_t>(static_cast<const char*>(found) - unread()) + 1;
      return true;
    }
    cursor_ = end_;
  }
  return false;
}

bool FileReader::skipWhiteSpace() {
  while (!isExhausted() || refill()) {
    for (; cursor_ < end_; ++cursor_) {
      const char character = *unread();
      if (!isWhiteSpace(character)) return true;
      if (character == '\n') countLineFeed();
    }
  }
  return false;
}

bool FileReader::readWord(String& word) {
  if (!skipWhiteSpace()) return false;
  word.clear();
  while (!isExhausted() || refill()) {
    const char* const start = unread();
    const char* const found = std::find_if(start, blockStart_ + end_, isWhiteSpace);
    // Inside the block, whose size is 32-bit.
    const auto run = static_cast<std::int32_t>(found - start);
    if (run > 0) word.append(start, run);
    cursor_ += run;
    if (cursor_ < end_) break;
  }
  return true;
}

}  // namespace Tessaly
