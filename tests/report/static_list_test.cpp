#include "report/static_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "report/state_texts.h"
#include "tests/report/made_rows.h"

using Quillet::SampleState;

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

}  // namespace

TEST(StaticList, OfNoSamplesIsEmpty) {
  EXPECT_EQ(Quillet::staticList(Quillet::WorstSamples(5)), "");
}

TEST(StaticList, OfConvertedSamplesIsTheirCount) {
  Quillet::WorstSamples worst(5);
  for (int i = 0; i < 1200; ++i) worst.add(rowOf("a", SampleState::converted));

  EXPECT_EQ(Quillet::staticList(worst),
            "<table>\n<caption>Samples by state</caption>\n"
            "<tr data-severity=\"whole\"><th scope=\"row\">converted</th><td>1,200</td><td>" +
                std::string(Quillet::adviceOf(SampleState::converted)) + "</td></tr>\n</table>\n");
}

TEST(StaticList, NamesTheSamplesThatAreNotConvertedWorstFirst) {
  Quillet::WorstSamples worst(2);
  worst.add(rowOf("w", SampleState::waiting));
  worst.add(rowOf("b<i>&", SampleState::invalid, "not a \"trace\""));
  worst.add(rowOf("v", SampleState::waiting));
  worst.add(orphanRow());

  const std::string html = Quillet::staticList(worst);

  EXPECT_THAT(
      html,
      ::testing::EndsWith(
          "<tr data-severity=\"untrusted\"><th scope=\"row\">orphan</th><td>old</td><td></td>"
          "<td>poly</td></tr>\n"
          "<tr data-severity=\"missing\"><th scope=\"row\">invalid</th><td>b&#60;i&#62;&#38;</td>"
          "<td>b&#60;i&#62;&#38;.ab1</td><td>not a &#34;trace&#34;</td></tr>\n"
          "</table>\n<p>and 2 more</p>\n"));
  EXPECT_THAT(html, HasSubstr("<th scope=\"row\">waiting</th><td>2</td>"));
  EXPECT_THAT(html, Not(HasSubstr("converted</th>")));
}
