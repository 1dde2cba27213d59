#include "report/html_text.h"

#include <cstddef>
#include <cstdint>

namespace Quillet {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// What the first byte of a character in UTF-8 says.
struct Lead {
  std::size_t length;      // bytes of the character; 0 when none begins so
  std::uint32_t bits;      // those that the first byte holds
  std::uint32_t smallest;  // code point that is not written shorter
};

Lead leadOf(std::uint32_t byte) {
  if (byte < 0x80) return {1, byte, 0};
  if (byte >> 5 == 0x06) return {2, byte & 0x1F, 0x80};
  if (byte >> 4 == 0x0E) return {3, byte & 0x0F, 0x800};
  if (byte >> 3 == 0x1E) return {4, byte & 0x07, 0x10000};
  return {0, 0, 0};
}

bool isCodePoint(std::uint32_t code) {
  constexpr std::uint32_t largest = 0x10FFFF;
  const bool isSurrogate = code >= 0xD800 && code < 0xE000;
  return code <= largest && !isSurrogate;
}

/// The character at the start of a text that is not empty.
struct Character {
  std::uint32_t code = 0;
  std::size_t length = 1;  // bytes
  bool isValid = false;
};

Character firstOf(std::string_view text) {
  const Lead lead = leadOf(static_cast<unsigned char>(text[0]));
  if (lead.length == 0 || lead.length > text.size()) return {};
  std::uint32_t code = lead.bits;
  for (std::size_t i = 1; i < lead.length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte >> 6 != 0x02) return {};
    code = code << 6 | (byte & 0x3FU);
  }
  if (code < lead.smallest || !isCodePoint(code)) return {};
  return {code, lead.length, true};
}

/// Whether a character has to be written as a reference.
bool needsReference(std::uint32_t code) {
  if (code < 0x80 &&
      std::string_view("<>&\"'").find(static_cast<char>(code)) != std::string_view::npos) {
    return true;
  }
  return code < 0x20 || code == 0x7F;
}

bool hasNoReference(std::uint32_t code) { return code == 0 || (code >= 0x80 && code < 0xA0); }

}  // namespace

std::string htmlText(std::string_view bytes) {
  std::string html;
  html.reserve(bytes.size());
  while (!bytes.empty()) {
    const Character character = firstOf(bytes);
    if (!character.isValid || hasNoReference(character.code)) {
      html += replacement;
    } else if (needsReference(character.code)) {
      html += "&#" + std::to_string(character.code) + ';';
    } else {
      html += bytes.substr(0, character.length);
    }
    bytes.remove_prefix(character.length);
  }
  return html;
}

}  // namespace Quillet
