#include "report/page_text.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// How often `words` occur in `text`.
int countOf(std::string_view text, std::string_view words) {
  int count = 0;
  for (std::size_t at = text.find(words); at != text.npos; at = text.find(words, at + 1)) ++count;
  return count;
}

}  // namespace

TEST(PageText, HasEachMarkOnceAndInOrder) {
  const std::string_view page = Quillet::pageTemplate();
  const std::vector<std::string_view> marks{"{{policy}}",  "{{title}}",  "{{style}}",
                                            "{{verdict}}", "{{made}}",   "{{static}}",
                                            "{{rows}}",    "{{script}}", "{{pictures}}"};

  EXPECT_EQ(countOf(page, "{{"), static_cast<int>(marks.size()));
  std::size_t before = 0;
  for (const std::string_view mark : marks) {
    EXPECT_EQ(countOf(page, mark), 1) << mark;
    EXPECT_GT(page.find(mark), before) << mark;
    before = page.find(mark);
  }
}

// The policy's hashes are those of the whole text of the elements, and browsers take a line feed
// for each carriage return.
TEST(PageText, PutsStyleAndScriptAloneIntoTheirElements) {
  const std::string_view page = Quillet::pageTemplate();

  EXPECT_EQ(countOf(page, "<style>{{style}}</style>"), 1);
  EXPECT_EQ(countOf(page, "<script>{{script}}</script>"), 1);
  EXPECT_EQ(countOf(page, "<script type=\"application/json\" id=\"rows\">"), 1);
  EXPECT_EQ(countOf(page, "content=\"{{policy}}\""), 1);
  EXPECT_EQ(countOf(page, "style=\""), 0);
  EXPECT_EQ(countOf(page, "<script"), 2);
  for (const std::string_view text :
       {page, Quillet::pageStyle().text, Quillet::pageScript().text}) {
    EXPECT_EQ(countOf(text, "\r"), 0);
    EXPECT_EQ(countOf(text, std::string_view("\0", 1)), 0);
  }
  EXPECT_EQ(countOf(Quillet::pageStyle().text, "</"), 0);
  EXPECT_EQ(countOf(Quillet::pageScript().text, "</script"), 0);
  EXPECT_EQ(countOf(Quillet::pageScript().text, "<!--"), 0);
}

TEST(PageText, IsOneStrictFunctionThatIsCalled) {
  const std::string_view script = Quillet::pageScript().text;

  EXPECT_TRUE(script.starts_with("(() => {\n\"use strict\";\n"));
  EXPECT_TRUE(script.ends_with("\n})();\n"));
  EXPECT_LE(script.size(), 60'000U);
}

TEST(PageText, NamesNoOtherPlace) {
  for (const std::string_view text : {Quillet::pageTemplate(), Quillet::pageStyle().text}) {
    for (const std::string_view word :
         {"http:", "https:", "//", "url(", "@import", " src=", "<link"}) {
      EXPECT_EQ(countOf(text, word), 0) << word;
    }
  }
}
