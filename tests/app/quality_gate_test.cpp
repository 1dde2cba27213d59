#include "app/quality_gate.h"

#include <gtest/gtest.h>
#include <map>

namespace {

constexpr int passes = -1;

struct Calls {
  Tessaly::String bases;
  Tessaly::String qualities;
};

/// 70 bases A of quality 20 but for what stands at the given positions. A quality of 0 ends the
/// quality text, as it does in the text that a trace gives.
Calls callsWith(const std::map<int, int>& qualitiesAt, const std::map<int, char>& basesAt = {}) {
  Calls calls;
  for (int i = 0; i < 70; ++i) {
    calls.bases.append(basesAt.contains(i) ? basesAt.at(i) : 'A');
  }
  for (int i = 0; i < 70; ++i) {
    const int quality = qualitiesAt.contains(i) ? qualitiesAt.at(i) : 20;
    if (quality == 0) {
      break;
    }
    calls.qualities.append(static_cast<char>(quality));
  }
  return calls;
}

/// Expects the gate to refuse the base at `baseIndex` for `quality`, or to let the trace pass.
void expectGate(const Tessaly::String& bases, const Tessaly::String& qualities, int baseIndex,
                int quality) {
  const auto refused = Quillet::firstUnusableQuality(bases, qualities);
  ASSERT_EQ(refused.has_value(), baseIndex != passes);
  if (refused) {
    EXPECT_EQ(refused->baseIndex, baseIndex);
    EXPECT_EQ(refused->quality, quality);
  }
}

void expectGate(const Calls& calls, int baseIndex, int quality = 0) {
  expectGate(calls.bases, calls.qualities, baseIndex, quality);
}

/// `base` at the positions `first` to `last`.
std::map<int, char> run(int first, int last, char base) {
  std::map<int, char> basesAt;
  for (int i = first; i <= last; ++i) {
    basesAt[i] = base;
  }
  return basesAt;
}

TEST(QualityGate, RefusesAQualityOfAHundredAtThePositions40To59Only) {
  for (int position = 0; position < 70; ++position) {
    SCOPED_TRACE(position);
    expectGate(callsWith({{position, 100}}), position < 40 || position > 59 ? passes : position,
               100);
  }
}

TEST(QualityGate, RefusesAnyQualityBut1To99) {
  for (int quality = 0; quality < 256; ++quality) {
    SCOPED_TRACE(quality);
    expectGate(callsWith({{50, quality}}), quality >= 1 && quality <= 99 ? passes : 50, quality);
  }
}

TEST(QualityGate, NamesTheFirstOfSeveral) {
  expectGate(callsWith({{59, 200}, {45, 150}, {52, 0}}), 45, 150);
  expectGate(callsWith({{59, 200}, {45, 0}, {52, 150}}), 45, 0);
}

TEST(QualityGate, TakesABaseAfterTheEndOfTheQualitiesAsOneOfQuality0) {
  const struct {
    int zeroAt;  // of 70 bases
    int refused;
  } cases[] = {{0, 40},  {9, 40},  {39, 40},     {40, 40},    {41, 41},
               {58, 58}, {59, 59}, {60, passes}, {69, passes}};
  for (const auto& row : cases) {
    SCOPED_TRACE(row.zeroAt);
    expectGate(callsWith({{row.zeroAt, 0}}), row.refused);
  }
}

TEST(QualityGate, RefusesAStored0ThatTheQualityTextHolds) {
  Tessaly::String qualities('\x14', 50);
  qualities.append('\0');
  qualities.append(Tessaly::String('\x14', 19));

  expectGate(Tessaly::String('A', 70), qualities, 50, 0);
}

TEST(QualityGate, PassesBasesNOfEitherCaseAndNoOthers) {
  for (int base = 1; base < 256; ++base) {
    SCOPED_TRACE(base);
    const Calls calls = callsWith({{50, 100}}, {{50, static_cast<char>(base)}});
    expectGate(calls, base == 'N' || base == 'n' ? passes : 50, 100);
  }
}

TEST(QualityGate, LooksForTheNextBaseAfterAnN) {
  expectGate(callsWith({{40, 0}}, run(40, 59, 'N')), passes);
  expectGate(callsWith({{40, 0}}, run(40, 59, 'n')), passes);
  expectGate(callsWith({{40, 0}}, run(40, 58, 'N')), 59);
  expectGate(callsWith({{58, 0}}, run(58, 58, 'N')), 59);
  expectGate(callsWith({{40, 200}, {41, 150}}, run(40, 40, 'N')), 41, 150);
}

TEST(QualityGate, PassesWhatEndsBeforeTheWindow) {
  for (int count = 0; count <= 40; ++count) {
    SCOPED_TRACE(count);
    expectGate(Tessaly::String('A', count), Tessaly::String(), passes, 0);
  }
  expectGate(Tessaly::String('A', 41), Tessaly::String(), 40, 0);
}

TEST(QualityGate, AsksForNoQualitiesAfterTheLastBase) {
  const Tessaly::String bases('A', 45);

  expectGate(bases, Tessaly::String('\x14', 45), passes, 0);
  expectGate(bases, Tessaly::String('\x14', 44), 44, 0);
}

}  // namespace
