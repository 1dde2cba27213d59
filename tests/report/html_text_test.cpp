#include "report/html_text.h"

#include <gtest/gtest.h>
#include <string>

namespace {

const std::string noCharacter = "\xEF\xBF\xBD";  // U+FFFD

}  // namespace

TEST(HtmlText, KeepsWhatHtmlGivesNoMeaning) {
  for (const std::string text :
       {"", "clone 07_(a).ab1 #{{title}} a:12%41;", "\xC3\xA9\xE2\x80\xA8", "\xF0\x9F\xA7\xAC",
        "\xE2\x80\xAE", "\xC2\xA0", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(Quillet::htmlText(text), text);
  }
}

TEST(HtmlText, WritesMarkupAsReferences) {
  EXPECT_EQ(Quillet::htmlText("<b>\"a\" & 'b'</b>"),
            "&#60;b&#62;&#34;a&#34; &#38; &#39;b&#39;&#60;/b&#62;");
  EXPECT_EQ(Quillet::htmlText("&lt;"), "&#38;lt;");
}

TEST(HtmlText, WritesControlCharactersAsReferences) {
  EXPECT_EQ(Quillet::htmlText("a\tb\nc\rd\x1b[31m\x7F"), "a&#9;b&#10;c&#13;d&#27;[31m&#127;");
}

// A reference to one of U+0080 to U+009F names another character.
TEST(HtmlText, ReplacesCharactersThatNoReferenceCanName) {
  EXPECT_EQ(Quillet::htmlText(std::string("a\0b", 3)), "a" + noCharacter + "b");
  EXPECT_EQ(Quillet::htmlText("a\xC2\x9B"
                              "b"),
            "a" + noCharacter + "b");
}

TEST(HtmlText, ReplacesEachByteThatIsNoUtf8) {
  const struct {
    const char* bytes;
    int replaced;
  } cases[] = {{"\xFF", 1},
               {"\x80", 1},
               {"\xC3", 1},              // cut
               {"\xE2\x80", 2},          // cut
               {"\xF0\x9F\xA7", 3},      // cut
               {"\xC0\xBC", 2},          // "<", too long
               {"\xE0\x80\xBC", 3},      // the same
               {"\xF0\x80\x80\xBC", 4},  // the same
               {"\xED\xA0\x80", 3},      // a surrogate
               {"\xF4\x90\x80\x80", 4},  // beyond the last character
               {"\xF8\x88\x80\x80\x80", 5}};
  for (const auto& row : cases) {
    std::string expected;
    for (int i = 0; i < row.replaced; ++i) expected += noCharacter;
    EXPECT_EQ(Quillet::htmlText(row.bytes), expected);
    EXPECT_EQ(Quillet::htmlText(std::string(row.bytes) + "<"), expected + "&#60;");
  }
}
