#include "report/worst_samples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/report/made_rows.h"

using Quillet::SampleState;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> samplesOf(const Quillet::WorstSamples& worst) {
  std::vector<std::string> samples;
  for (const Quillet::SampleRow* row : worst.rows()) samples.push_back(row->sample);
  return samples;
}

}  // namespace

TEST(WorstSamples, AreSortedByStateAndThenStandAsTheyCame) {
  Quillet::WorstSamples worst(10);
  worst.add(rowOf("w2", SampleState::waiting));
  worst.add(rowOf("c", SampleState::converted));
  worst.add(rowOf("d2", SampleState::differs));
  worst.add(rowOf("w1", SampleState::waiting));
  worst.add(rowOf("d1", SampleState::differs));

  EXPECT_THAT(samplesOf(worst), ElementsAre("d2", "d1", "w2", "w1"));
  EXPECT_EQ(worst.leftOut(), 0U);
  EXPECT_EQ(worst.counts().of(SampleState::waiting), 2U);
  EXPECT_EQ(worst.counts().of(SampleState::converted), 1U);
}

TEST(WorstSamples, LeaveOutTheLessBadOnes) {
  Quillet::WorstSamples worst(2);
  worst.add(rowOf("w1", SampleState::waiting));
  worst.add(rowOf("w2", SampleState::waiting));
  worst.add(rowOf("w3", SampleState::waiting));
  worst.add(rowOf("d", SampleState::differs));

  EXPECT_THAT(samplesOf(worst), ElementsAre("d", "w1"));
  EXPECT_EQ(worst.leftOut(), 2U);
}

TEST(WorstSamples, KeepWhatNamesASampleWithoutItsFigures) {
  Quillet::WorstSamples worst(2);
  worst.add(fullRow());

  const Quillet::SampleRow& kept = *worst.rows()[0];

  EXPECT_EQ(kept.sample, "clone01");
  EXPECT_EQ(kept.trace, "clone01.ab1.gz");
  EXPECT_EQ(kept.detail, "phd,poly");
  EXPECT_FALSE(kept.figures);
  EXPECT_FALSE(kept.notes.plate);
}

TEST(WorstSamples, AreNoneWhereAllIsConverted) {
  Quillet::WorstSamples worst(2);
  for (int i = 0; i < 3; ++i) worst.add(rowOf("c", SampleState::converted));

  EXPECT_THAT(worst.rows(), IsEmpty());
  EXPECT_EQ(worst.leftOut(), 0U);
}
