#include "audit/sample_verdict.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace Quillet {

namespace {

struct NamedPart {
  bool holds;
  std::string_view name;
};

/// The names of the parts that hold, comma-separated.
std::string joined(std::initializer_list<NamedPart> parts) {
  std::string text;
  for (const NamedPart& part : parts) {
    if (!part.holds) continue;
    if (!text.empty()) text += ',';
    text += part.name;
  }
  return text;
}

bool canBeRead(const TraceFinding& trace) { return trace.fault.empty(); }

/// Whether the gate refuses what the trace itself holds.
bool isRefused(const TraceFinding& trace) {
  return trace.holdsCalls && trace.holdsQualities && trace.unusable.has_value();
}

std::string textOf(const TraceFinding& trace, const UnusableQuality& unusable) {
  // A base after the end of the qualities is refused for the stored 0 that ended them.
  const std::int32_t index = std::min(unusable.baseIndex, trace.qualityCount);
  return "quality " + std::to_string(unusable.quality) + " at base " + std::to_string(index + 1);
}

bool hasWrongPoly(const ResultFinding& result) {
  return result.hasPoly && result.polyIsWhole && !result.polyIsRight;
}

/// What a whole .phd.1 has from another trace while all that its own trace decides is its own:
/// "calls", "qualities", or empty for nothing.
std::string borrowedPart(const TraceFinding& trace, const ResultFinding& result) {
  if (result.phdIsRight || !canBeRead(trace) || result.headerDiffers) return "";
  if (!trace.holdsCalls) return "calls";
  const bool restIsOwn = !result.basesDiffer && !result.positionsDiffer && !hasWrongPoly(result);
  return !trace.holdsQualities && restIsOwn ? "qualities" : "";
}

/// How a whole .phd.1 and its .poly differ from what the trace alone gives; empty when they do not.
std::string differenceOf(const TraceFinding& trace, const ResultFinding& result) {
  if (!canBeRead(trace)) return "invalid";
  if (isRefused(trace)) return "refused";
  return joined({{!result.phdIsRight && result.basesDiffer, "bases"},
                 {!result.phdIsRight && result.qualitiesDiffer, "qualities"},
                 {!result.phdIsRight && result.positionsDiffer, "positions"},
                 {!result.phdIsRight && result.headerDiffers, "header"},
                 {hasWrongPoly(result), "poly"}});
}

}  // namespace

SampleVerdict verdictWithoutResult(const TraceFinding& trace) {
  if (!canBeRead(trace)) return {SampleState::invalid, trace.fault};
  if (!trace.impediment.empty()) return {SampleState::invalid, trace.impediment};
  if (!trace.holdsCalls) return {SampleState::refused, "no calls"};
  if (!trace.holdsQualities) return {SampleState::refused, "no qualities"};
  if (trace.unusable) return {SampleState::refused, textOf(trace, *trace.unusable)};
  return {SampleState::waiting, ""};
}

SampleVerdict verdictOf(const TraceFinding& trace, const ResultFinding& result) {
  if (!result.hasPhd) return verdictWithoutResult(trace);
  if (result.phdIsWhole) {
    const std::string borrowed = borrowedPart(trace, result);
    if (!borrowed.empty()) return {SampleState::borrowed, borrowed};
    const std::string difference = differenceOf(trace, result);
    if (!difference.empty()) return {SampleState::differs, difference};
  }
  const bool polyIsCut = result.hasPoly && !result.polyIsWhole;
  if (!result.phdIsWhole || polyIsCut) {
    return {SampleState::cut, joined({{!result.phdIsWhole, "phd"}, {polyIsCut, "poly"}})};
  }
  if (!result.hasPoly) return {SampleState::noPoly, ""};
  return {SampleState::converted, ""};
}

}  // namespace Quillet
