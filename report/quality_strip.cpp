#include "report/quality_strip.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "audit/sample_row.h"

namespace Quillet {

namespace {

constexpr std::string_view characters =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::size_t groupSize = 10;

}  // namespace

std::string qualityStrip(std::span<const std::uint8_t> qualities) {
  std::string strip;
  strip.reserve((qualities.size() + groupSize - 1) / groupSize);
  while (!qualities.empty()) {
    const auto group = qualities.first(std::min(groupSize, qualities.size()));
    std::size_t sum = 0;
    for (const std::uint8_t stored : group) sum += countedQuality(stored);
    const std::size_t mean = (2 * sum + group.size()) / (2 * group.size());  // halves go up
    strip += characters[std::min(mean, characters.size() - 1)];
    qualities = qualities.subspan(group.size());
  }
  return strip;
}

}  // namespace Quillet
