#include "report/verdict.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

using Quillet::SampleState;

namespace {

struct Count {
  SampleState state;
  int count;
};

/// Both sentences.
std::string verdict(std::initializer_list<Count> states, std::uint64_t shortReads = 0) {
  Quillet::StateCounts counts;
  for (const Count& each : states) {
    for (int i = 0; i < each.count; ++i) counts.add(each.state);
  }
  const Quillet::Verdict verdict = Quillet::projectVerdict(counts, shortReads);
  return verdict.rest.empty() ? verdict.main : verdict.main + ' ' + verdict.rest;
}

}  // namespace

TEST(Verdict, CountsTheWholeSamples) {
  EXPECT_EQ(verdict({}), "The project holds no samples.");
  EXPECT_EQ(verdict({{SampleState::converted, 1}}), "The only sample is whole.");
  EXPECT_EQ(verdict({{SampleState::converted, 2}}), "All 2 samples are whole.");
  EXPECT_EQ(verdict({{SampleState::converted, 1480}}), "All 1,480 samples are whole.");
  EXPECT_EQ(verdict({{SampleState::converted, 1}, {SampleState::waiting, 1}}),
            "1 of 2 samples is whole. 1 sample has no result.");
  EXPECT_EQ(verdict({{SampleState::waiting, 1}}),
            "The only sample is not whole. 1 sample has no result.");
  EXPECT_EQ(verdict({{SampleState::waiting, 1200}}),
            "None of 1,200 samples is whole. 1,200 samples have no result.");
}

TEST(Verdict, SaysWhatIsWrong) {
  EXPECT_EQ(
      verdict({{SampleState::differs, 2},
               {SampleState::borrowed, 3},
               {SampleState::cut, 5},
               {SampleState::noPoly, 2},
               {SampleState::orphan, 1},
               {SampleState::invalid, 5},
               {SampleState::hidden, 2},
               {SampleState::waiting, 3},
               {SampleState::converted, 1480}},
              26),
      "1,480 of 1,503 samples are whole. 11 results are not to be trusted, 10 samples have no "
      "result, 2 traces share their sample names with others, 26 whole reads have fewer than "
      "300 good bases.");
}

TEST(Verdict, SpeaksOfOneThingInTheSingular) {
  EXPECT_EQ(verdict({{SampleState::orphan, 1},
                     {SampleState::refused, 1},
                     {SampleState::hidden, 1},
                     {SampleState::converted, 7}},
                    1),
            "7 of 10 samples are whole. 1 result is not to be trusted, 1 sample has no result, "
            "1 trace shares its sample name with another, 1 whole read has fewer than 300 good "
            "bases.");
}

TEST(Verdict, PutsEachStateIntoOnePart) {
  const std::string untrusted = "The only sample is not whole. 1 result is not to be trusted.";
  const std::string missing = "The only sample is not whole. 1 sample has no result.";
  for (const auto state :
       {SampleState::differs, SampleState::borrowed, SampleState::cut, SampleState::orphan}) {
    EXPECT_EQ(verdict({{state, 1}}), untrusted) << textOf(state);
  }
  for (const auto state :
       {SampleState::noPoly, SampleState::invalid, SampleState::refused, SampleState::waiting}) {
    EXPECT_EQ(verdict({{state, 1}}), missing) << textOf(state);
  }
  EXPECT_EQ(verdict({{SampleState::hidden, 1}}),
            "The only sample is not whole. 1 trace shares its sample name with another.");
}

TEST(WithCommas, SetsACommaBeforeEachThreeDigits) {
  const struct {
    std::uint64_t number;
    const char* text;
  } cases[] = {{0, "0"},
               {7, "7"},
               {999, "999"},
               {1000, "1,000"},
               {12345, "12,345"},
               {999999, "999,999"},
               {1000000, "1,000,000"},
               {18446744073709551615U, "18,446,744,073,709,551,615"}};
  for (const auto& row : cases) EXPECT_EQ(Quillet::withCommas(row.number), row.text);
}
