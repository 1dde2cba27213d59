#include "audit/call_figures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace Quillet {

namespace {

constexpr int goodQuality = 20;
constexpr std::size_t windowSize = 20;                  // neighbours that are good together
constexpr std::uint32_t goodWindow = 20 * goodQuality;  // sum of their qualities
constexpr std::size_t longestUntrimmed = 20;            // bases
constexpr double errorLimit = 0.05;                     // of Mott's trimming

using Qualities = std::span<const std::uint8_t>;

/// What a base of each stored quality adds to the running sum of Mott's trimming.
const std::array<double, 256>& scores() {
  static const auto table = [] {
    std::array<double, 256> values{};
    for (std::size_t stored = 0; stored < values.size(); ++stored) {
      const auto quality = countedQuality(static_cast<std::uint8_t>(stored));
      values[stored] = errorLimit - std::pow(10.0, quality / -10.0);
    }
    return values;
  }();
  return table;
}

/// Mott's trimming: the running sum of (limit - error probability), never below 0, rises most
/// between the trim's start and end. The first base is always left out.
void trim(Qualities qualities, CallFigures& figures) {
  if (qualities.size() <= longestUntrimmed) {
    figures.trimEnd = static_cast<std::uint32_t>(qualities.size());
    return;
  }
  const std::array<double, 256>& scoreOf = scores();
  std::size_t start = 0;
  std::size_t end = 0;
  double sum = 0;
  double highest = 0;
  for (std::size_t i = 1; i < qualities.size(); ++i) {
    sum += scoreOf[qualities[i]];
    if (sum < 0) {
      sum = 0;
      continue;
    }
    if (start == 0) start = i;
    if (sum > highest) {
      highest = sum;
      end = i;
    }
  }
  if (start >= end) return;
  figures.trimStart = static_cast<std::uint32_t>(start);
  figures.trimEnd = static_cast<std::uint32_t>(end);
}

/// The longest run of bases in which every window is a good one; 0 without a good window.
std::uint32_t longestGoodRun(Qualities qualities) {
  std::uint32_t sum = 0;
  std::size_t goodWindows = 0;  // one after the other, up to the present one
  std::size_t longest = 0;
  for (std::size_t i = 0; i < qualities.size(); ++i) {
    sum += countedQuality(qualities[i]);
    if (i + 1 < windowSize) continue;
    goodWindows = sum >= goodWindow ? goodWindows + 1 : 0;
    longest = std::max(longest, goodWindows);
    sum -= countedQuality(qualities[i + 1 - windowSize]);
  }
  return longest == 0 ? 0 : static_cast<std::uint32_t>(longest + windowSize - 1);
}

bool isCalled(char base) {
  constexpr std::string_view letters = "ACGTacgt";
  return letters.find(base) != std::string_view::npos;
}

}  // namespace

CallFigures figuresOf(std::string_view bases, Qualities qualities) {
  CallFigures figures;
  std::uint64_t sum = 0;
  for (const std::uint8_t stored : qualities) {
    const std::uint32_t quality = countedQuality(stored);
    sum += quality;
    figures.q20 += quality >= goodQuality ? 1 : 0;
  }
  if (!qualities.empty()) {
    figures.meanQuality = static_cast<double>(sum) / static_cast<double>(qualities.size());
  }
  figures.contiguous = longestGoodRun(qualities);
  trim(qualities, figures);
  figures.noCalls = static_cast<std::uint32_t>(
      std::count_if(bases.begin(), bases.end(), [](char base) { return !isCalled(base); }));
  return figures;
}

}  // namespace Quillet
