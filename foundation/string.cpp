#include "foundation/string.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <istream>
#include <limits>
#include <new>
#include <ostream>
#include <string>
#include <utility>

namespace Tessaly {
namespace {

constexpr std::int64_t largestCapacity = std::numeric_limits<std::int32_t>::max();  // bytes

/// Throws an allocation error also for more than `largestCapacity` bytes.
std::unique_ptr<char[]> newBuffer(std::int64_t bytes) {
  if (bytes > largestCapacity) {
    throw stringAllocationError;
  }
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[static_cast<std::size_t>(bytes)]);
  if (!buffer) {
    throw stringAllocationError;
  }
  return buffer;
}

/// `count`; a negative one is a parameter error.
std::int32_t checkedCount(std::int32_t count) {
  if (count < 0) {
    throw stringParameterError;
  }
  return count;
}

/// The length of a plain text, which must not be null.
std::int32_t lengthOf(const char* text) {
  if (text == nullptr) {
    throw stringParameterError;
  }
  const std::size_t length = std::strlen(text);
  if (length >= static_cast<std::size_t>(largestCapacity)) {
    throw stringAllocationError;
  }
  return static_cast<std::int32_t>(length);  // fits: tested above
}

/// The regions may overlap. With a count of 0 both pointers may be null.
void copyRun(char* destination, const char* run, std::int32_t count) {
  if (count > 0) {
    std::memmove(destination, run, static_cast<std::size_t>(count));
  }
}

void fillRun(char* destination, char character, std::int32_t count) {
  std::memset(destination, static_cast<unsigned char>(character), static_cast<std::size_t>(count));
}

String joined(const String& left, const char* right, std::int32_t rightLength) {
  const std::int64_t length = std::int64_t{left.length()} + rightLength;
  if (length >= largestCapacity) {
    throw stringAllocationError;
  }
  String result(static_cast<std::int32_t>(length));  // fits: tested above
  result.append(left);
  result.append(right, rightLength);
  return result;
}

}  // namespace

String::String() : String(std::int32_t{0}) {}

String::String(std::int32_t room)
    : text_(newBuffer(std::int64_t{std::max(room, 0)} + 1)), capacity_(std::max(room, 0) + 1) {
  text_[0] = '\0';
}

String::String(const char* text) : String(lengthOf(text)) {
  length_ = capacity_ - 1;
  copyRun(text_.get(), text, capacity_);
}

String::String(const String& other)
    : text_(newBuffer(other.capacity_)), length_(other.length_), capacity_(other.capacity_) {
  copyRun(text_.get(), other.text_.get(), length_ + 1);
}

String::String(char character) : String(character, 1) {}

String::String(char character, std::int32_t count) : String(checkedCount(count)) {
  fillRun(text_.get(), character, count);
  setLength(count);
}

String::~String() = default;

String& String::operator=(const String& other) {
  // Deliberate: an assignment also shrinks the buffer, so that stored texts take no spare room.
  store(other.text_.get(), other.length_, std::int64_t{other.length_} + 1);
  return *this;
}

String& String::operator=(const char* text) {
  const std::int32_t length = lengthOf(text);
  store(text, length, std::int64_t{length} + 1);
  return *this;
}

void String::set(const String& other) { keepOrStore(other.text_.get(), other.length_); }

void String::set(const char* text) { keepOrStore(text, lengthOf(text)); }

void String::setPrefix(const String& source, std::int32_t count) {
  // Deliberate: a count of 0 means the whole source, not the empty text.
  const bool whole = checkedCount(count) == 0 || count > source.length_;
  keepOrStore(source.text_.get(), whole ? source.length_ : count);
}

void String::setPrefix(const char* source, std::int32_t count) {
  // Deliberate: a count of 0 means the whole source, not the empty text.
  if (checkedCount(count) == 0) {
    set(source);
    return;
  }
  if (source == nullptr) {
    throw stringParameterError;
  }
  const void* end = std::memchr(source, '\0', static_cast<std::size_t>(count));
  const std::ptrdiff_t length = end == nullptr ? count : static_cast<const char*>(end) - source;
  keepOrStore(source, static_cast<std::int32_t>(length));  // fits: at most `count`
}

void String::setTail(const String& source, std::int32_t position) {
  if (position < 0 || position > source.length_) {
    throw stringPositionError;
  }
  keepOrStore(source.text_.get() + position, source.length_ - position);
}

void String::append(const String& other) { append(other.text_.get(), other.length_); }

void String::append(const char* text) { append(text, lengthOf(text)); }

void String::append(char character) { append(&character, 1); }

void String::append(const char* run, std::int32_t count) {
  const std::int64_t newLength = std::int64_t{length_} + checkedCount(count);
  if (capacity_ <= newLength) {
    std::unique_ptr<char[]> buffer = newBuffer(2 * newLength);
    copyRun(buffer.get(), text_.get(), length_);
    copyRun(buffer.get() + length_, run, count);
    text_ = std::move(buffer);  // only now: `run` may lie in the old buffer
    capacity_ = static_cast<std::int32_t>(2 * newLength);  // fits: newBuffer refuses more
  } else {
    copyRun(text_.get() + length_, run, count);
  }
  setLength(static_cast<std::int32_t>(newLength));  // fits: below the capacity
}

void String::removeLast(std::int32_t count) {
  setLength(length_ - std::min(checkedCount(count), length_));
}

void String::cut(std::int32_t position) {
  // Deliberate: a cut at the end of the text is a position error too.
  if (position < 0 || position >= length_) {
    throw stringPositionError;
  }
  setLength(position);
}

void String::clear() { setLength(0); }

void String::setCapacity(std::int32_t bytes) {
  if (bytes < 1) {
    throw stringParameterError;
  }
  if (bytes != capacity_) {
    store(text_.get(), std::min(length_, bytes - 1), bytes);
  }
}

void String::fill(char character) { fillRun(text_.get(), character, length_); }

void String::fill(char character, std::int32_t count) {
  const std::int64_t doubled = 2 * std::int64_t{checkedCount(count)};
  if (capacity_ <= count) {
    text_ = newBuffer(doubled);
    capacity_ = static_cast<std::int32_t>(doubled);  // fits: newBuffer refuses more
  }
  fillRun(text_.get(), character, count);
  setLength(count);
}

void String::upperCase() {
  std::transform(text_.get(), text_.get() + length_, text_.get(), [](unsigned char character) {
    return static_cast<char>(std::toupper(character));  // a byte again
  });
}

void String::lowerCase() {
  std::transform(text_.get(), text_.get() + length_, text_.get(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));  // a byte again
  });
}

void String::stripLeading() {
  char* end = text_.get() + length_;
  const char* first = std::find_if_not(text_.get(), end, isWhiteSpace);
  const auto kept = static_cast<std::int32_t>(end - first);  // fits: at most the length
  copyRun(text_.get(), first, kept);
  setLength(kept);
}

void String::stripTrailing() {
  std::int32_t kept = length_;
  while (kept > 0 && isWhiteSpace((*this)[kept - 1])) {
    --kept;
  }
  setLength(kept);
}

void String::strip() {
  stripLeading();
  stripTrailing();
}

bool String::isNotBlank() const {
  return !std::all_of(text_.get(), text_.get() + length_, isWhiteSpace);
}

void String::store(const char* run, std::int32_t count, std::int64_t bytes) {
  if (capacity_ == bytes) {
    copyRun(text_.get(), run, count);
  } else {
    std::unique_ptr<char[]> buffer = newBuffer(bytes);
    copyRun(buffer.get(), run, count);
    text_ = std::move(buffer);                     // only now: `run` may lie in the old buffer
    capacity_ = static_cast<std::int32_t>(bytes);  // fits: newBuffer refuses more
  }
  setLength(count);
}

void String::keepOrStore(const char* run, std::int32_t count) {
  store(run, count, capacity_ <= count ? std::int64_t{count} + 1 : capacity_);
}

void String::setLength(std::int32_t count) {
  length_ = count;
  text_[static_cast<std::size_t>(count)] = '\0';
}

String operator+(const String& left, const String& right) {
  return joined(left, right.text(), right.length());
}

String operator+(const String& left, const char* right) {
  return joined(left, right, lengthOf(right));
}

std::ostream& operator<<(std::ostream& stream, const String& text) {
  return stream.write(text.text(), text.length());
}

bool readLine(std::istream& stream, String& line) {
  char piece[512];
  bool found = false;
  line.clear();
  while (stream.good()) {
    const int next = stream.peek();  // so that get() never fails for lack of a character
    if (next == std::char_traits<char>::eof()) {
      break;
    }
    found = true;
    if (next == '\n') {
      stream.ignore();
      break;
    }
    stream.get(piece, sizeof piece);
    line.append(piece, static_cast<std::int32_t>(stream.gcount()));  // at most the piece
  }
  return found;
}

}  // namespace Tessaly
