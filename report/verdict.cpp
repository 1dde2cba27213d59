#include "report/verdict.h"

#include <vector>

#include "report/state_texts.h"

namespace Quillet {

namespace {

template <typename IsCounted>
std::uint64_t sumOf(const StateCounts& counts, IsCounted isCounted) {
  std::uint64_t sum = 0;
  for (const SampleState state : sampleStates) {
    if (isCounted(state)) sum += counts.of(state);
  }
  return sum;
}

bool isUntrusted(SampleState state) { return severityOf(state) == Severity::untrusted; }

/// A hidden trace has none either, but its sample has.
bool hasNoResult(SampleState state) {
  return state != SampleState::hidden && !isUntrusted(state) &&
         severityOf(state) != Severity::whole;
}

std::string mainSentence(std::uint64_t whole, std::uint64_t all) {
  if (all == 0) return "The project holds no samples.";
  if (all == 1) return whole == 1 ? "The only sample is whole." : "The only sample is not whole.";
  if (whole == all) return "All " + withCommas(all) + " samples are whole.";
  if (whole == 0) return "None of " + withCommas(all) + " samples is whole.";
  return withCommas(whole) + " of " + withCommas(all) + " samples " +
         (whole == 1 ? "is whole." : "are whole.");
}

/// A number with what it counts.
struct Part {
  std::uint64_t count;
  const char* ofOne;
  const char* ofSeveral;
};

}  // namespace

Verdict projectVerdict(const StateCounts& counts, std::uint64_t shortReads) {
  const std::vector<Part> parts{
      {sumOf(counts, isUntrusted), "result is not to be trusted", "results are not to be trusted"},
      {sumOf(counts, hasNoResult), "sample has no result", "samples have no result"},
      {counts.of(SampleState::hidden), "trace shares its sample name with another",
       "traces share their sample names with others"},
      {shortReads, "whole read has fewer than 300 good bases",
       "whole reads have fewer than 300 good bases"}};
  static_assert(shortStretch == 300);

  const std::uint64_t all = sumOf(counts, [](SampleState) { return true; });
  Verdict verdict{.main = mainSentence(counts.of(SampleState::converted), all), .rest = {}};
  for (const Part& part : parts) {
    if (part.count == 0) continue;
    if (!verdict.rest.empty()) verdict.rest += ", ";
    verdict.rest += withCommas(part.count) + ' ' + (part.count == 1 ? part.ofOne : part.ofSeveral);
  }
  if (!verdict.rest.empty()) verdict.rest += '.';
  return verdict;
}

std::string withCommas(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t end = text.size(); end > 3; end -= 3) text.insert(end - 3, 1, ',');
  return text;
}

}  // namespace Quillet
