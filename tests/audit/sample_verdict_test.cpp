#include "audit/sample_verdict.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Quillet::ResultFinding;
using State = Quillet::SampleState;
using Quillet::TraceFinding;
using Quillet::UnusableQuality;

// Traces.
TraceFinding good() {
  return {.fault = {},
          .impediment = {},
          .holdsCalls = true,
          .holdsQualities = true,
          .unusable = {},
          .qualityCount = 70};
}
TraceFinding unreadable() { return {.fault = "not a trace"}; }
TraceFinding withoutCalls() { return {}; }
TraceFinding withoutQualities() { return {.holdsCalls = true}; }
TraceFinding withoutQualitiesRefused() {
  return {.holdsCalls = true, .unusable = UnusableQuality{.baseIndex = 40, .quality = 0}};
}
TraceFinding refusedTrace(UnusableQuality unusable = {.baseIndex = 45, .quality = 150}) {
  TraceFinding trace = good();
  trace.unusable = unusable;
  return trace;
}

// Results.
ResultFinding none() { return {}; }
ResultFinding right() {
  return {.hasPhd = true,
          .phdIsWhole = true,
          .phdIsRight = true,
          .hasPoly = true,
          .polyIsWhole = true,
          .polyIsRight = true};
}
ResultFinding wrong(const std::string& parts) {
  ResultFinding result = right();
  const auto names = [&](const char* part) { return parts.find(part) != std::string::npos; };
  result.basesDiffer = names("bases");
  result.qualitiesDiffer = names("qualities");
  result.positionsDiffer = names("positions");
  result.headerDiffers = names("header");
  result.polyIsRight = !names("poly");
  result.phdIsRight = parts.empty() || parts == "poly";
  return result;
}
ResultFinding cutPhd(ResultFinding result = right()) {
  result.phdIsWhole = result.phdIsRight = false;
  return result;
}
ResultFinding cutPoly(ResultFinding result = right()) {
  result.polyIsWhole = result.polyIsRight = false;
  return result;
}
ResultFinding withoutPoly(ResultFinding result = right()) {
  result.hasPoly = result.polyIsWhole = result.polyIsRight = false;
  return result;
}

TEST(SampleVerdict, FollowsTheTableOfStates) {
  const struct {
    const char* what;
    TraceFinding trace;
    ResultFinding result;
    State state;
    std::string detail;
  } cases[] = {
      {"both right", good(), right(), State::converted, ""},
      {"no poly", good(), withoutPoly(), State::noPoly, ""},
      {"cut phd", good(), cutPhd(), State::cut, "phd"},
      {"cut phd, no poly", good(), cutPhd(withoutPoly()), State::cut, "phd"},
      {"cut poly", good(), cutPoly(), State::cut, "poly"},
      {"both cut", good(), cutPhd(cutPoly()), State::cut, "phd,poly"},
      {"cut, trace unreadable", unreadable(), cutPhd(), State::cut, "phd"},
      {"cut, trace refused", refusedTrace(), cutPhd(), State::cut, "phd"},
      {"cut, trace without calls", withoutCalls(), cutPhd(cutPoly()), State::cut, "phd,poly"},

      {"bases", good(), wrong("bases"), State::differs, "bases"},
      {"qualities", good(), wrong("qualities"), State::differs, "qualities"},
      {"positions", good(), wrong("positions"), State::differs, "positions"},
      {"header", good(), wrong("header"), State::differs, "header"},
      {"poly", good(), wrong("poly"), State::differs, "poly"},
      {"all, in order", good(), wrong("bases qualities positions header poly"), State::differs,
       "bases,qualities,positions,header,poly"},
      {"a cut poly does not count", good(), cutPoly(wrong("bases poly")), State::differs, "bases"},
      {"nor does a missing one", good(), withoutPoly(wrong("bases poly")), State::differs, "bases"},
      {"trace unreadable", unreadable(), wrong("bases"), State::differs, "invalid"},
      {"trace refused", refusedTrace(), wrong("bases"), State::differs, "refused"},
      {"trace refused, same bytes", refusedTrace(), wrong("qualities"), State::differs, "refused"},

      {"no calls, right", withoutCalls(), right(), State::converted, ""},
      {"borrowed calls", withoutCalls(), wrong("bases qualities positions poly"), State::borrowed,
       "calls"},
      {"borrowed calls, cut poly", withoutCalls(), cutPoly(wrong("bases")), State::borrowed,
       "calls"},
      {"another's result", withoutCalls(), wrong("bases qualities positions header"),
       State::differs, "bases,qualities,positions,header"},
      {"no calls, wrong poly", withoutCalls(), wrong("poly"), State::differs, "poly"},

      {"no qualities, right", withoutQualities(), right(), State::converted, ""},
      {"borrowed qualities", withoutQualities(), wrong("qualities"), State::borrowed, "qualities"},
      {"borrowed qualities, cut poly", withoutQualities(), cutPoly(wrong("qualities")),
       State::borrowed, "qualities"},
      {"borrowed qualities, no poly", withoutQualities(), withoutPoly(wrong("qualities")),
       State::borrowed, "qualities"},
      {"borrowed past the gate", withoutQualitiesRefused(), wrong("qualities"), State::borrowed,
       "qualities"},
      {"not its bases", withoutQualities(), wrong("bases qualities"), State::differs,
       "bases,qualities"},
      {"not its positions", withoutQualities(), wrong("qualities positions"), State::differs,
       "qualities,positions"},
      {"not its header", withoutQualities(), wrong("qualities header"), State::differs,
       "qualities,header"},
      {"not its poly", withoutQualities(), wrong("qualities poly"), State::differs,
       "qualities,poly"},

      {"qualities of a trace that has some", good(), wrong("qualities"), State::differs,
       "qualities"},

      {"waiting", good(), none(), State::waiting, ""},
      {"invalid", unreadable(), none(), State::invalid, "not a trace"},
      {"no calls", withoutCalls(), none(), State::refused, "no calls"},
      {"no qualities", withoutQualities(), none(), State::refused, "no qualities"},
      {"no qualities before the gate", withoutQualitiesRefused(), none(), State::refused,
       "no qualities"},
      {"the gate", refusedTrace(), none(), State::refused, "quality 150 at base 46"},
  };
  for (const auto& row : cases) {
    const Quillet::SampleVerdict verdict = verdictOf(row.trace, row.result);
    EXPECT_STREQ(textOf(verdict.state), textOf(row.state)) << row.what;
    EXPECT_EQ(verdict.detail, row.detail) << row.what;
  }
}

TEST(SampleVerdict, AnImpedimentMakesAReadableTraceInvalidAsLongAsItHasNoResult) {
  for (TraceFinding trace : {good(), withoutCalls(), withoutQualities(), refusedTrace()}) {
    trace.impediment = "name too long";
    const Quillet::SampleVerdict verdict = verdictOf(trace, none());
    EXPECT_EQ(verdict.state, State::invalid);
    EXPECT_EQ(verdict.detail, "name too long");
  }
  TraceFinding trace = good();
  trace.impediment = "name too long";
  EXPECT_EQ(verdictOf(trace, right()).state, State::converted);
}

TEST(SampleVerdict, AFaultComesBeforeAnImpediment) {
  TraceFinding trace = unreadable();
  trace.impediment = "name not for a shell";

  EXPECT_EQ(verdictOf(trace, none()).detail, "not a trace");
}

TEST(SampleVerdict, AQualityAfterTheEndOfTheTextIsThatOfTheStored0) {
  TraceFinding trace = refusedTrace({.baseIndex = 40, .quality = 0});
  trace.qualityCount = 5;
  EXPECT_EQ(verdictWithoutResult(trace).detail, "quality 0 at base 6");

  trace = refusedTrace({.baseIndex = 42, .quality = 0});
  trace.qualityCount = 42;
  EXPECT_EQ(verdictWithoutResult(trace).detail, "quality 0 at base 43");
}

TEST(SampleVerdict, ThePolyIsNotLookedAtWithoutAPhd) {
  ResultFinding result = right();
  result.hasPhd = result.phdIsWhole = result.phdIsRight = false;

  EXPECT_EQ(verdictOf(good(), result).state, State::waiting);
  EXPECT_EQ(verdictOf(unreadable(), cutPoly(result)).state, State::invalid);
}

TEST(SampleVerdict, StatesHaveTheirNames) {
  std::string names;
  for (const State state : Quillet::sampleStates) names += std::string(textOf(state)) + ' ';

  EXPECT_EQ(names, "differs borrowed cut no-poly orphan invalid refused hidden waiting converted ");
}

}  // namespace
