#include "audit/phd_result.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace Quillet {

namespace {

constexpr std::string_view firstWord = "BEGIN_SEQUENCE ";
constexpr std::string_view linesBegin = "\nBEGIN_DNA\n";
constexpr std::string_view linesEnd = "END_DNA\n";

/// Takes `prefix` off the text; false, with the text as it was, when it does not begin so.
bool take(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// Takes a line without its line feed; false when none ends.
bool takeLine(std::string_view& text, std::string_view& line) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return false;
  line = text.substr(0, end);
  text.remove_prefix(end + 1);
  return true;
}

/// The last place of `linesBegin`; npos where there is none. Looks from one "_" to the one before
/// it: comparing at every byte, as rfind() does, took a third of splitPhd()'s instructions.
std::size_t lastLinesBegin(std::string_view text) {
  constexpr std::size_t mark = linesBegin.find('_');
  std::size_t end = text.size();
  while (const void* const found = memrchr(text.data(), '_', end)) {
    end = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
    if (end >= mark && text.substr(end - mark).starts_with(linesBegin)) return end - mark;
  }
  return std::string_view::npos;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

/// Takes an integer and the character that must follow it; false, with the text as it was, when it
/// does not begin so. Pointers: indices of the view took half as long again.
bool takeInteger(std::string_view& text, char follower, std::string_view& number) {
  const char* const begin = text.data();
  const char* const last = begin + text.size();
  const char* at = begin;
  if (at != last && *at == '-') ++at;
  const char* const digits = at;
  while (at != last && isDigit(*at)) ++at;
  if (at == digits || at == last || *at != follower) return false;
  number = {begin, at};
  text = {at + 1, last};
  return true;
}

/// Takes empty lines and whole blocks as long as there are any. False for a block without its end.
bool passOverBlocks(std::string_view& text) {
  for (;;) {
    if (take(text, "\n")) continue;
    std::string_view end;
    if (take(text, "BEGIN_TAG\n")) {
      end = "END_TAG";
    } else if (take(text, "WR{\n")) {
      end = "}";
    } else {
      return true;
    }
    std::string_view line;
    do {
      if (!takeLine(text, line)) return false;
    } while (line != end);
  }
}

std::int32_t valueOf(std::string_view number) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc::result_out_of_range) return value;
  return number.starts_with('-') ? std::numeric_limits<std::int32_t>::min()
                                 : std::numeric_limits<std::int32_t>::max();
}

}  // namespace

bool takePhdLine(std::string_view& lines, PhdLine& line) {
  std::string_view rest = lines;
  if (rest.size() < 2 || rest[1] != ' ') return false;
  line.base = rest[0];
  rest.remove_prefix(2);
  if (!takeInteger(rest, ' ', line.quality) || !takeInteger(rest, '\n', line.position)) {
    return false;
  }
  lines = rest;
  return true;
}

bool isPhdEnding(std::string_view text) {
  return passOverBlocks(text) && take(text, "END_SEQUENCE\n") && passOverBlocks(text) &&
         text.empty();
}

std::optional<PhdParts> splitPhd(std::string_view text) {
  if (!text.starts_with(firstWord)) return std::nullopt;
  const std::size_t begin = lastLinesBegin(text);
  if (begin == std::string_view::npos) return std::nullopt;

  PhdParts parts;
  parts.header = text.substr(0, begin + linesBegin.size());
  std::string_view rest = text.substr(parts.header.size());
  const char* const lines = rest.data();
  for (PhdLine line; takePhdLine(rest, line);) ++parts.baseCount;
  parts.lines = std::string_view(lines, static_cast<std::size_t>(rest.data() - lines));
  if (!take(rest, linesEnd) || !isPhdEnding(rest)) return std::nullopt;
  return parts;
}

PhdResult valuesOf(const PhdParts& parts) {
  PhdResult result;
  result.bases.reserve(parts.baseCount);
  result.qualities.reserve(parts.baseCount);
  result.positions.reserve(parts.baseCount);
  std::string_view lines = parts.lines;
  for (PhdLine line; takePhdLine(lines, line);) {
    result.bases += line.base;
    result.qualities.push_back(valueOf(line.quality));
    result.positions.push_back(valueOf(line.position));
  }
  return result;
}

}  // namespace Quillet
