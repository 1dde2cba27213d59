#include "audit/poly_result.h"

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

/// The number of blanks in the first `length` bytes of a text. Up to 64, a window of 64 is looked
/// at if the text is that long: the compiler makes a few vector steps of a loop of fixed length, so
/// a .poly takes half the time.
unsigned char blanksIn(std::string_view text, unsigned char length) {
  constexpr unsigned char window = 64;
  unsigned char count = 0;
  if (length <= window && text.size() >= window) {
    for (unsigned char i = 0; i < window; ++i) {
      count += static_cast<unsigned char>((text[i] == ' ') & (i < length));
    }
  } else {
    for (unsigned char i = 0; i < length; ++i) count += static_cast<unsigned char>(text[i] == ' ');
  }
  return count;
}

/// Passes over all lines if each is plainly one of twelve fields: eleven blanks, and no two
/// separators side by side. Long lines and those with a blank or a line feed as base are not, nor
/// are wrong ones; then the text stays. Line by line as takePolyLine() goes, a .poly takes four
/// times as long: fields are of unpredictable length, and these loops have no branch for a field.
void takePlainLines(std::string_view& text, std::size_t& lineCount) {
  constexpr std::size_t longestPlain = 255;
  if (text.empty() || isSeparator(text.front()) != 0) return;
  unsigned char sideBySide = 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    sideBySide |= static_cast<unsigned char>(isSeparator(text[i - 1]) & isSeparator(text[i]));
  }
  if (sideBySide != 0) return;

  std::size_t count = 0;
  for (std::string_view rest = text; !rest.empty(); ++count) {
    const std::size_t length = rest.find('\n');
    if (length > longestPlain) return;  // also where there is no line feed
    if (blanksIn(rest, static_cast<unsigned char>(length)) != fieldCount - 1) return;
    rest.remove_prefix(length + 1);
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
