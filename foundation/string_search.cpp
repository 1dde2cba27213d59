#include "foundation/string.h"

#include <string_view>

namespace Tessaly {
namespace {

std::string_view viewOf(const String& text) {
  return {text.text(), static_cast<std::size_t>(text.length())};
}

/// A null text is a parameter error.
std::string_view viewOf(const char* text) {
  if (text == nullptr) {
    throw stringParameterError;
  }
  return text;
}

bool endsWithView(std::string_view text, std::string_view suffix) {
  // Deliberate: a text that equals the suffix does not end with it.
  return text.size() > suffix.size() && text.ends_with(suffix);
}

bool containsView(std::string_view text, std::string_view pattern) {
  // Deliberate: nothing contains the empty text, although its first index is 0.
  return !pattern.empty() && text.find(pattern) != std::string_view::npos;
}

/// -1 for npos.
std::int32_t indexFrom(std::size_t found) {
  // An index that was found is below a String's length, so it fits.
  return found == std::string_view::npos ? -1 : static_cast<std::int32_t>(found);
}

}  // namespace

bool String::startsWith(const String& prefix) const {
  return viewOf(*this).starts_with(viewOf(prefix));
}

bool String::startsWith(const char* prefix) const {
  return viewOf(*this).starts_with(viewOf(prefix));
}

bool String::matchesAt(const String& pattern, std::int32_t position) const {
  if (position < 0 || position >= length_) {
    throw stringPositionError;
  }
  return viewOf(*this).substr(static_cast<std::size_t>(position)).starts_with(viewOf(pattern));
}

bool String::endsWith(const String& suffix) const {
  return endsWithView(viewOf(*this), viewOf(suffix));
}

bool String::endsWith(const char* suffix) const {
  return endsWithView(viewOf(*this), viewOf(suffix));
}

bool String::endsWith(char character) const {
  return length_ > 0 && (*this)[length_ - 1] == character;
}

bool String::contains(const String& pattern) const {
  return containsView(viewOf(*this), viewOf(pattern));
}

bool String::contains(const char* pattern) const {
  return containsView(viewOf(*this), viewOf(pattern));
}

bool String::contains(char character) const {
  return character != '\0' && viewOf(*this).find(character) != std::string_view::npos;
}

bool String::occursIn(const char* text) const {
  return viewOf(text).find(viewOf(*this)) != std::string_view::npos;
}

std::int32_t String::firstIndex(const String& pattern) const {
  return indexFrom(viewOf(*this).find(viewOf(pattern)));
}

std::int32_t String::firstIndex(const char* pattern) const {
  return indexFrom(viewOf(*this).find(viewOf(pattern)));
}

std::int32_t String::firstIndex(char character) const {
  // Deliberate: the zero character is found at the end, although no text contains it.
  return character == '\0' ? length_ : indexFrom(viewOf(*this).find(character));
}

bool String::findFrom(const String& pattern, std::int32_t& position) const {
  if (position < 0 || position >= length_) {
    return false;
  }
  const std::int32_t found =
      indexFrom(viewOf(*this).find(viewOf(pattern), static_cast<std::size_t>(position)));
  if (found < 0) {
    return false;
  }
  position = found;
  return true;
}

std::int32_t String::lastIndex(char character) const {
  return indexFrom(viewOf(*this).rfind(character));
}

std::int32_t String::lastIndex(const String& pattern) const {
  std::int32_t position = -1;
  return findBackwards(pattern, position) ? position : -1;
}

bool String::findBackwards(const String& pattern, std::int32_t& position) const {
  const std::int32_t start = position == -1 ? length_ - 1 : position;
  if (start < 0 || start >= length_) {
    return false;
  }
  const std::int32_t found =
      indexFrom(viewOf(*this).rfind(viewOf(pattern), static_cast<std::size_t>(start)));
  if (found < 0) {
    return false;
  }
  position = found;
  return true;
}

bool operator==(const String& left, const String& right) { return viewOf(left) == viewOf(right); }

bool operator==(const String& left, const char* right) { return viewOf(left) == viewOf(right); }

}  // namespace Tessaly
