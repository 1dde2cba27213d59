#include "audit/poly_result.h"

namespace Quillet {

namespace {

constexpr std::string_view firstLineEnd = " 1 1 1 1 1";
constexpr int fieldCount = 12;

/// Takes one line of twelve fields; false when the text does not begin with one.
bool takePolyLine(std::string_view& text) {
  if (text.empty()) return false;
  // The base is a byte of any kind; a blank or a line feed is all of its field.
  std::size_t at = text[0] == ' ' || text[0] == '\n' ? 1 : text.find_first_of(" \n");
  for (int field = 1;; ++field) {
    const char follower = field == fieldCount ? '\n' : ' ';
    if (at >= text.size() || text[at] != follower) return false;
    ++at;
    if (field == fieldCount) break;
    const std::size_t start = at;
    at = text.find_first_of(" \n", start);
    if (at == start) return false;  // an empty field
  }
  text.remove_prefix(at);
  return true;
}

}  // namespace

bool isWholePoly(std::string_view text, std::optional<std::size_t> baseCount) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos || !text.substr(0, end).ends_with(firstLineEnd)) return false;
  text.remove_prefix(end + 1);

  std::size_t lineCount = 0;
  while (takePolyLine(text)) ++lineCount;
  return text.empty() && (!baseCount || lineCount == *baseCount);
}

}  // namespace Quillet
