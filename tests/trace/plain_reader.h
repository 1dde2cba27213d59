#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// The number at `bytes`, most significant byte first; floating values are copied. Shares no code
/// with the program, so that tests find an error in either.
template <typename Value>
Value numberAt(const char* bytes) {
  Value value{};
  if constexpr (std::is_floating_point_v<Value>) {
    std::memcpy(&value, bytes, sizeof value);
  } else {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < sizeof value; ++i) {
      sum = sum * 256 + static_cast<unsigned char>(bytes[i]);
    }
    value = static_cast<Value>(sum);  // same bits, perhaps signed
  }
  return value;
}

/// A plain model of the reader without blocks: a file in memory and a position.
///
/// It does not model what depends on the block size: the steps after a cut value, and the text
/// operations at or past the end of the file.
class PlainReader {
 public:
  explicit PlainReader(std::string file) : file_(std::move(file)) {}

  std::size_t position() const { return position_; }
  std::size_t left() const { return position_ < file_.size() ? file_.size() - position_ : 0; }
  std::int32_t lineCount() const { return lineCount_; }

  bool seek(std::int32_t position) {
    if (position < 0) return false;
    position_ = static_cast<std::size_t>(position);
    return true;
  }

  template <typename Value>
  bool one(Value& value) {
    if (left() < sizeof value) return false;
    value = numberAt<Value>(file_.data() + position_);
    position_ += sizeof value;
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

  std::int32_t bytes(char* destination, std::int32_t count) { return array(destination, count); }
  std::int32_t bytesAt(std::int32_t position, char* destination, std::int32_t count) {
    return seek(position) ? bytes(destination, count) : 0;
  }

  bool text(std::string& text, std::int32_t length) {
    text = file_.substr(position_, static_cast<std::size_t>(std::max(length, 0)));
    position_ += text.size();
    return true;
  }
  bool textAt(std::int32_t position, std::string& out, std::int32_t length) {
    out.clear();
    if (position < 0) return true;
    return seek(position) && left() > 0 && text(out, length);
  }
  bool line(std::string& line) {
    const bool fed = file_.find('\n', position_) != std::string::npos;
    until(line, '\n');
    if (fed) ++lineCount_;
    return true;
  }
  bool lineAt(std::int32_t position, std::string& out) {
    return seek(position) && left() > 0 && line(out);
  }
  bool until(std::string& text, char delimiter) {
    const std::size_t found = std::min(file_.find(delimiter, position_), file_.size());
    text = file_.substr(position_, found - position_);
    position_ = std::min(found + 1, file_.size());
    return true;
  }
  bool skipUntil(char delimiter) {
    const std::size_t found = file_.find(delimiter, position_);
    position_ = found == std::string::npos ? std::max(position_, file_.size()) : found + 1;
    return found != std::string::npos;
  }
  bool skipWhiteSpace() {
    for (; left() > 0; ++position_) {
      if (!isWhite()) return true;
      if (file_[position_] == '\n') ++lineCount_;
    }
    return false;
  }
  bool word(std::string& word) {
    if (!skipWhiteSpace()) return false;
    word.clear();
    for (; left() > 0 && !isWhite(); ++position_) word += file_[position_];
    return true;
  }

 private:
  bool isWhite() const {
    return std::string_view(" \t\n\v\f\r").find(file_[position_]) != std::string_view::npos;
  }

  std::string file_;
  std::size_t position_ = 0;
  std::int32_t lineCount_ = 0;
};
