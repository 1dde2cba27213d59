#include "audit/escaped_text.h"

namespace Quillet {

namespace {

/// The letter that follows the backslash; 0 for a byte that needs none.
char escapeLetter(char byte) {
  switch (byte) {
    case '\t':
      return 't';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\\':
      return '\\';
    case '\0':
      return '0';
    default:
      return 0;
  }
}

void appendHex(std::string& line, unsigned char byte) {
  constexpr char digits[] = "0123456789abcdef";
  line += "\\x";
  line += digits[byte >> 4];
  line += digits[byte & 15];
}

/// Bytes at the start of `text` that make up one control character; 0 when there is none. The
/// control characters from U+0080 on are two bytes in UTF-8.
std::size_t controlLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7F) return 1;
  if (first != 0xC2 || text.size() < 2) return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  return second >= 0x80 && second < 0xA0 ? 2 : 0;
}

}  // namespace

void appendEscaped(std::string& line, std::string_view text, bool forTerminal) {
  while (!text.empty()) {
    std::size_t length = 1;
    if (const char letter = escapeLetter(text[0]); letter != 0) {
      line += '\\';
      line += letter;
    } else if (const std::size_t control = forTerminal ? controlLength(text) : 0; control != 0) {
      length = control;
      for (const char byte : text.substr(0, length)) {
        appendHex(line, static_cast<unsigned char>(byte));
      }
    } else {
      line += text[0];
    }
    text.remove_prefix(length);
  }
}

}  // namespace Quillet
