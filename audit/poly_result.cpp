#include "audit/poly_result.h"

#include <algorithm>

namespace Quillet {

namespace {

constexpr std::string_view firstLineEnd = " 1 1 1 1 1";
constexpr int fieldCount = 12;

/// The end of the field that starts at `at`: the next blank or line feed, or the end of the text.
std::size_t fieldEnd(std::string_view text, std::size_t at) {
  // find_first_of() costs ten times as much.
  while (at < text.size() && text[at] != ' ' && text[at] != '\n') ++at;
  return at;
}

/// Takes one line of twelve fields; false when the text does not begin with one.
bool takePolyLine(std::string_view& text) {
  if (text.empty()) return false;
  // The base is a byte of any kind; a blank or a line feed is all of its field.
  std::size_t at = text[0] == ' ' || text[0] == '\n' ? 1 : fieldEnd(text, 0);
  for (int field = 1;; ++field) {
    const char follower = field == fieldCount ? '\n' : ' ';
    if (at >= text.size() || text[at] != follower) return false;
    ++at;
    if (field == fieldCount) break;
    const std::size_t start = at;
    at = fieldEnd(text, start);
    if (at == start) return false;  // an empty field
  }
  text.remove_prefix(at);
  return true;
}

/// 1 for a blank and a line feed, else 0.
unsigned char isSeparator(char character) {
  return static_cast<unsigned char>((character == ' ') | (character == '\n'));
}

/// Passes over all lines if each is plainly one of twelve fields: eleven blanks, and no two
/// separators side by side. Lines with a blank or a line feed as base are not, nor are wrong ones;
/// then the text stays. Line by line as takePolyLine() goes, a .poly takes five times as long:
/// fields are of unpredictable length, and these loops have no branch for a field.
void takePlainLines(std::string_view& text, std::size_t& lineCount) {
  if (text.empty() || isSeparator(text.front()) != 0) return;
  unsigned char sideBySide = 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    sideBySide |= static_cast<unsigned char>(isSeparator(text[i - 1]) & isSeparator(text[i]));
  }
  if (sideBySide != 0) return;

  std::size_t count = 0;
  for (std::size_t start = 0; start < text.size(); ++count) {
    const std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) return;
    const std::string_view line = text.substr(start, end - start);
    if (std::count(line.begin(), line.end(), ' ') != fieldCount - 1) return;
    start = end + 1;
  }
  lineCount = count;
  text = {};
}

}  // namespace

bool isWholePoly(std::string_view text, std::optional<std::size_t> baseCount) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos || !text.substr(0, end).ends_with(firstLineEnd)) return false;
  text.remove_prefix(end + 1);

  std::size_t lineCount = 0;
  takePlainLines(text, lineCount);
  while (takePolyLine(text)) ++lineCount;
  return text.empty() && (!baseCount || lineCount == *baseCount);
}

}  // namespace Quillet
