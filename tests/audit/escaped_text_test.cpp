#include "audit/escaped_text.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using namespace std::string_literals;

std::string escaped(const std::string& text, bool forTerminal) {
  std::string line = "before:";
  Quillet::appendEscaped(line, text, forTerminal);
  EXPECT_TRUE(line.starts_with("before:"));
  return line.substr(7);
}

}  // namespace

TEST(EscapedText, KeepsALineAndItsFieldsTogether) {
  const struct {
    std::string text;
    std::string found;
  } cases[] = {{"a\tb", "a\\tb"},    {"a\nb", "a\\nb"},  {"a\rb", "a\\rb"},
               {"a\\tb", "a\\\\tb"}, {"a\0b"s, "a\\0b"}, {"\t\n\r\\\0"s, "\\t\\n\\r\\\\\\0"}};
  for (const auto& each : cases) {
    EXPECT_EQ(escaped(each.text, false), each.found);
    EXPECT_EQ(escaped(each.text, true), each.found);
  }
}

TEST(EscapedText, LeavesAllOtherBytesInAFile) {
  std::string others;
  for (int byte = 1; byte < 256; ++byte) {
    if (byte != '\t' && byte != '\n' && byte != '\r' && byte != '\\') {
      others += static_cast<char>(byte);
    }
  }

  EXPECT_EQ(escaped(others, false), others);
}

TEST(EscapedText, SendsNoControlCharacterToATerminal) {
  const struct {
    std::string text;
    std::string found;
  } cases[] = {{"\x1b[2J", "\\x1b[2J"},
               {"\x01\x7F", "\\x01\\x7f"},
               {"\xC2\x9B", "\\xc2\\x9b"},
               {"\xC2\x80", "\\xc2\\x80"},
               {"\xC2\xA0", "\xC2\xA0"},
               {"\xC2", "\xC2"},
               {"\xC3\x9B", "\xC3\x9B"},
               {"x \"y' z", "x \"y' z"},
               {"\xF0\x9F\xA7\xAC", "\xF0\x9F\xA7\xAC"}};
  for (const auto& each : cases) EXPECT_EQ(escaped(each.text, true), each.found);
}
