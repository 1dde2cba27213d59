#include "audit/mixed_bases.h"

#include <algorithm>
#include <cstdlib>

#include "foundation/channels.h"

namespace Quillet {

namespace {

bool isHighEnough(const MixedSearch& search, std::int32_t base, int called, int second) {
  const double calledHeight = search.found.channel(called).heights[static_cast<std::size_t>(base)];
  const double secondHeight = search.found.channel(second).heights[static_cast<std::size_t>(base)];
  return secondHeight >= search.ratio * calledHeight;
}

/// The search notes the sample after a maximum, so one is taken off.
bool standsUnderCall(const MixedSearch& search, std::int32_t base) {
  const bool isLast = base + 1 == search.bases.length();
  const std::int64_t before = base == 0 ? 0 : search.positions[base - 1];
  const std::int64_t after = isLast ? search.pointCount : search.positions[base + 1];
  const auto index = static_cast<std::size_t>(base);
  const std::int64_t distance =
      std::int64_t{search.found.secondPeaks().positions[index]} - 1 - search.positions[base];
  return 8 * std::abs(distance) <= after - before;
}

}  // namespace

std::vector<std::uint32_t> mixedPositions(const MixedSearch& search) {
  std::vector<std::uint32_t> mixed;
  const auto length = static_cast<std::uint32_t>(search.bases.length());
  for (std::uint32_t i = search.begin; i < std::min(search.end, length); ++i) {
    const auto base = static_cast<std::int32_t>(i);
    const int called = channelOf(search.bases[base]);
    const int second = channelOf(search.found.secondPeaks().bases[i]);
    if (called == noChannel || second == noChannel) continue;
    if (standsUnderCall(search, base) && isHighEnough(search, base, called, second)) {
      mixed.push_back(i + 1);
    }
  }
  return mixed;
}

}  // namespace Quillet
