#include "foundation/string_scanner.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Tessaly {
namespace {

std::unique_ptr<String> ownedCopy(const char* text) {
  std::unique_ptr<String> copy(new (std::nothrow) String(text));
  if (!copy) {
    throw stringAllocationError;
  }
  return copy;
}

}  // namespace

StringScanner::StringScanner(const String& text) : scanned_(&text), position_(text.text()) {}

StringScanner::StringScanner(const char* text)
    : owned_(ownedCopy(text)), scanned_(owned_.get()), position_(owned_->text()) {}

void StringScanner::attach(const String& text) {
  scanned_ = &text;
  position_ = text.text();
}

bool StringScanner::moveBack(std::int32_t count) {
  if (count < 0) {
    return false;
  }
  const std::int32_t before = index();
  position_ -= std::min(count, before);
  return count <= before;
}

bool StringScanner::moveForward(std::int32_t count) {
  if (count < 0) {
    return false;
  }
  const std::int32_t left = scanned_->length() - index();
  position_ += std::min(count, left);
  return count <= left;
}

bool StringScanner::moveTo(std::int32_t index) {
  if (index < 0 || index >= scanned_->length()) {
    return false;
  }
  position_ = scanned_->text() + index;
  return true;
}

char StringScanner::next() { return atEnd() ? '\0' : *position_++; }

bool StringScanner::skipTo(char character) {
  position_ = placeOf(character);
  return !atEnd();
}

void StringScanner::skipWhiteSpace() {
  position_ = std::find_if_not(position_, end(), isWhiteSpace);
}

bool StringScanner::skipWords(std::int32_t count) {
  for (std::int32_t skipped = 0; skipped < count; ++skipped) {
    skipWhiteSpace();
    if (atEnd()) {
      return false;
    }
    position_ = std::find_if(position_, end(), isWhiteSpace);
  }
  return count >= 0;
}

bool StringScanner::skipPast(char character, std::int32_t count) {
  for (std::int32_t skipped = 0; skipped < count; ++skipped) {
    if (!skipTo(character)) {
      return false;
    }
    ++position_;
  }
  return count >= 0;
}

bool StringScanner::skipLines(std::int32_t count) {
  for (std::int32_t skipped = 0; skipped < count; ++skipped) {
    if (atEnd()) {
      return false;
    }
    skipPast('\n', 1);
  }
  return count >= 0;
}

bool StringScanner::readWord(String& target) {
  const char* const first = std::find_if_not(position_, end(), isWhiteSpace);
  return take(first, std::find_if(first, end(), isWhiteSpace), target);
}

bool StringScanner::readUpTo(char character, String& target) {
  return take(position_, placeOf(character), target);
}

bool StringScanner::readRest(String& target) { return take(position_, end(), target); }

bool StringScanner::matches(const String& pattern) const {
  const auto length = static_cast<std::size_t>(pattern.length());
  return length > 0 && length <= static_cast<std::size_t>(end() - position_) &&
         std::memcmp(position_, pattern.text(), length) == 0;
}

bool StringScanner::find(const String& pattern) {
  return pattern.length() > 0 && moveTo(scanned_->firstIndex(pattern));  // -1 moves nothing
}

bool StringScanner::find(char character) {
  // The zero character has the length as its index, which moveTo refuses.
  return moveTo(scanned_->firstIndex(character));
}

const char* StringScanner::placeOf(char character) const {
  return std::find(position_, end(), character);
}

bool StringScanner::take(const char* first, const char* past, String& target) {
  if (&target == scanned_) {
    throw stringParameterError;
  }
  const bool found = first != end();
  target.clear();
  target.append(first, static_cast<std::int32_t>(past - first));  // at most the length
  position_ = past;
  return found;
}

}  // namespace Tessaly
