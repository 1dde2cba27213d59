#include "report/summary.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/report/made_rows.h"

using Quillet::SampleState;

TEST(Summary, CountsTheStatesAndNamesWhatIsNotConvertedWorstFirst) {
  Quillet::Summary summary;
  summary.add(rowOf("a", SampleState::converted));
  summary.add(rowOf("b", SampleState::waiting));
  summary.add(rowOf("c", SampleState::invalid, "not a trace"));
  summary.add(orphanRow());
  summary.add(rowOf("d", SampleState::converted));

  EXPECT_EQ(summary.text(false), R"(differs         0
borrowed        0
cut             0
no-poly         0
orphan          1
invalid         1
refused         0
hidden          0
waiting         1
converted       2

orphan     old: poly
invalid    c (c.ab1): not a trace
waiting    b (b.ab1)
)");
}

TEST(Summary, OfConvertedSamplesIsTheCountsAlone) {
  Quillet::Summary summary;
  for (int i = 0; i < 12; ++i) summary.add(rowOf("a", SampleState::converted));

  EXPECT_TRUE(summary.text(false).ends_with("\nconverted      12\n")) << summary.text(false);
}

TEST(Summary, NamesTwentySamplesAndCountsTheRest) {
  Quillet::Summary summary;
  for (int i = 0; i < 18; ++i) summary.add(rowOf("w" + std::to_string(i), SampleState::waiting));
  EXPECT_EQ(summary.text(false).find(" more"), std::string::npos);
  for (int i = 0; i < 4; ++i) summary.add(rowOf("c" + std::to_string(i), SampleState::cut, "phd"));

  const std::string text = summary.text(false);

  EXPECT_NE(text.find("cut        c0 (c0.ab1): phd\n"), std::string::npos);
  EXPECT_TRUE(text.ends_with("waiting    w15 (w15.ab1)\nand 2 more\n")) << text;
}

TEST(Summary, EscapesNames) {
  Quillet::Summary summary;
  summary.add(rowOf("a\nb\x1b", SampleState::hidden, "x\ty"));

  EXPECT_TRUE(summary.text(true).ends_with("hidden     a\\nb\\x1b (a\\nb\\x1b.ab1): x\\ty\n"));
  EXPECT_TRUE(summary.text(false).ends_with("hidden     a\\nb\x1b (a\\nb\x1b.ab1): x\\ty\n"));
}

TEST(StateCounts, GiveTheExitStatusOfTheWorstState) {
  const struct {
    SampleState state;
    int status;
  } cases[] = {{SampleState::differs, 3},  {SampleState::borrowed, 3}, {SampleState::cut, 3},
               {SampleState::orphan, 3},   {SampleState::noPoly, 2},   {SampleState::invalid, 2},
               {SampleState::refused, 2},  {SampleState::hidden, 2},   {SampleState::waiting, 2},
               {SampleState::converted, 0}};
  for (const auto& each : cases) {
    Quillet::StateCounts counts;
    counts.add(SampleState::converted);
    counts.add(each.state);
    EXPECT_EQ(counts.exitStatus(), each.status) << textOf(each.state);
    counts.add(SampleState::waiting);
    EXPECT_EQ(counts.exitStatus(), each.status == 0 ? 2 : each.status) << textOf(each.state);
  }
  EXPECT_EQ(Quillet::StateCounts().exitStatus(), 0);
}
