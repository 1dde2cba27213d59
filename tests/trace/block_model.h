#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "tests/trace/plain_reader.h"

/// A plain model of the reader's block rules: a position in a file in memory, a copied block, and
/// every operation byte by byte.
///
/// Unlike PlainReader it also models the effects of blocks: the block that is current after a seek,
/// and the rules at the end of the file.
class BlockModel {
 public:
  BlockModel(std::string file, std::int32_t blockSize)
      : file_(std::move(file)), blockSize_(blockSize) {
    readBlock();
  }

  void setBufferSize(std::int32_t blockSize) {
    blockSize_ = blockSize;
    buffer_.clear();
    cursor_ = 0;
    atEnd_ = false;
  }

  std::int32_t block() const { return block_; }
  std::int32_t blockBytes() const { return blockBytes_; }
  std::int32_t lineCount() const { return lineCount_; }
  bool atEnd() const { return atEnd_; }
  std::int32_t tell() const {  // modulo 2^32
    return static_cast<std::int32_t>(std::int64_t{blockSize_} * block_ + cursor_);
  }

  bool seek(std::int32_t position) {
    if (position < 0) return false;
    const std::int32_t number = position / blockSize_;
    if (number != block_) {
      stream_ = std::int64_t{number} * blockSize_;
      readBlock();
      block_ = number * blockSize_;  // the byte position, not the number
    }
    cursor_ = position % blockSize_;
    return true;
  }

  template <typename Value>
  bool one(Value& value) {
    char kept[sizeof value];
    if (end() - cursor_ < static_cast<std::int64_t>(sizeof value) && atEnd_) return false;
    for (char& byte : kept) {
      if (!next(byte)) return false;
    }
    value = numberAt<Value>(kept);
    return true;
  }
  template <typename Value>
  bool oneAt(std::int32_t position, Value& value) {
    return seek(position) && one(value);
  }
  template <typename Value>
  std::int32_t array(Value* values, std::int32_t count) {
    std::int32_t taken = 0;
    while (taken < count && one(values[taken])) ++taken;
    return taken;
  }
  std::int32_t bytes(char* destination, std::int32_t count) {
    std::int32_t taken = 0;
    while (taken < count && next(destination[taken])) ++taken;
    return taken;
  }
  std::int32_t bytesAt(std::int32_t position, char* destination, std::int32_t count) {
    return seek(position) ? bytes(destination, count) : 0;
  }

  bool text(std::string& text, std::int32_t length) {
    if (hasEnded()) return false;
    text.clear();
    char byte = 0;
    for (std::int32_t i = 0; i < length && next(byte); ++i) text += byte;
    return true;
  }
  bool textAt(std::int32_t position, std::string& out, std::int32_t length) {
    if (hasEnded()) return false;
    out.clear();
    if (position < 0) return true;
    return seek(position) && text(out, length);
  }
  bool line(std::string& line) {
    bool found = false;
    if (!until(line, '\n', found)) return false;
    if (found) ++lineCount_;
    return true;
  }
  bool lineAt(std::int32_t position, std::string& out) { return seek(position) && line(out); }
  bool until(std::string& text, char delimiter) {
    bool found = false;
    return until(text, delimiter, found);
  }
  bool skipUntil(char delimiter) {
    char byte = 0;
    while (next(byte)) {
      if (byte == delimiter) return true;
    }
    return false;
  }
  bool skipWhiteSpace() {
    char byte = 0;
    while (next(byte)) {
      if (!isWhite(byte)) {
        --cursor_;
        return true;
      }
      if (byte == '\n') ++lineCount_;
    }
    return false;
  }
  bool word(std::string& word) {
    if (!skipWhiteSpace()) return false;
    word.clear();
    char byte = 0;
    while (next(byte)) {
      if (isWhite(byte)) {
        --cursor_;
        break;
      }
      word += byte;
    }
    return true;
  }

 private:
  std::int64_t fileSize() const { return static_cast<std::int64_t>(file_.size()); }
  std::int64_t end() const { return static_cast<std::int64_t>(buffer_.size()); }
  bool hasEnded() const { return cursor_ >= end() && atEnd_; }
  static bool isWhite(char byte) {
    return std::string_view(" \t\n\v\f\r").find(byte) != std::string_view::npos;
  }

  void readBlock() {
    buffer_.clear();
    if (stream_ < fileSize()) {
      buffer_ =
          file_.substr(static_cast<std::size_t>(stream_), static_cast<std::size_t>(blockSize_));
    }
    stream_ += end();
    blockBytes_ = static_cast<std::int32_t>(end());
    atEnd_ = blockBytes_ < blockSize_;
    cursor_ = 0;
  }

  bool next(char& byte) {
    if (cursor_ >= end()) {
      if (atEnd_) return false;
      readBlock();
      ++block_;
      if (end() == 0) return false;
    }
    byte = buffer_[static_cast<std::size_t>(cursor_++)];
    return true;
  }

  bool until(std::string& text, char delimiter, bool& found) {
    if (hasEnded()) return false;
    text.clear();
    char byte = 0;
    while (next(byte)) {
      found = byte == delimiter;
      if (found) break;
      text += byte;
    }
    return true;
  }

  std::string file_;
  std::int32_t blockSize_;
  std::string buffer_;
  std::int64_t stream_ = 0;
  std::int32_t cursor_ = 0;
  std::int32_t block_ = 0;
  std::int32_t blockBytes_ = 0;
  std::int32_t lineCount_ = 0;
  bool atEnd_ = false;
};
