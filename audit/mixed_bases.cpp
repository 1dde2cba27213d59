#include "audit/mixed_bases.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

namespace Quillet {

namespace {

constexpr std::int64_t farthest = 32;  // samples; bounds the work for positions that make no sense

/// The samples that stand under a call.
struct Place {
  std::size_t begin = 0;
  std::size_t end = 0;    // exclusive
  std::int64_t fall = 0;  // samples within which a peak falls: half a base's distance
};

Place placeUnder(const MixedSearch& search, std::int32_t base) {
  const bool isLast = base + 1 == search.bases.length();
  const std::int64_t pointCount = search.channels.pointCount();
  const std::int64_t before = base == 0 ? 0 : search.positions[base - 1];
  const std::int64_t after = isLast ? pointCount : search.positions[base + 1];
  if (after <= before) return {};  // positions that make no sense
  const std::int64_t reach = std::min((after - before) / 8, farthest);
  const std::int64_t begin = std::max<std::int64_t>(search.positions[base] - reach, 0);
  const std::int64_t end = std::min(search.positions[base] + reach + 1, pointCount);
  if (begin >= end) return {};
  return {.begin = static_cast<std::size_t>(begin),
          .end = static_cast<std::size_t>(end),
          .fall = std::clamp<std::int64_t>((after - before) / 4, 1, 2 * farthest)};
}

/// Whether a peak's top is at `index`: on both sides the signal falls below nine tenths of the
/// height there within `reach` samples, and does not rise above it before.
bool isTop(std::span<const std::uint16_t> samples, std::size_t index, std::int64_t reach) {
  const std::uint32_t height = samples[index];
  const auto at = static_cast<std::int64_t>(index);
  const auto count = static_cast<std::int64_t>(samples.size());
  for (const int direction : {-1, 1}) {
    for (std::int64_t step = 1;; ++step) {
      const std::int64_t next = at + direction * step;
      if (step > reach || next < 0 || next >= count) return false;
      const std::uint32_t sample = samples[static_cast<std::size_t>(next)];
      if (sample > height) return false;
      if (10 * sample < 9 * height) break;
    }
  }
  return true;
}

/// The height of the highest peak whose top reaches into the place; 0 without one.
std::uint16_t highestTop(std::span<const std::uint16_t> samples, const Place& place) {
  std::uint16_t highest = 0;
  for (std::size_t index = place.begin; index < place.end; ++index) {
    if (samples[index] > highest && isTop(samples, index, place.fall)) highest = samples[index];
  }
  return highest;
}

double ratioOf(std::uint16_t second, std::uint16_t called) {
  if (called == 0) return std::numeric_limits<double>::infinity();
  return static_cast<double>(second) / static_cast<double>(called);
}

}  // namespace

std::vector<MixedBase> mixedBases(const MixedSearch& search) {
  std::vector<MixedBase> mixed;
  const auto length = static_cast<std::uint32_t>(search.bases.length());
  const std::uint32_t end = std::min(search.end, length);
  for (std::uint32_t i = search.begin; i < end && mixed.size() < mostMixedBases; ++i) {
    const auto base = static_cast<std::int32_t>(i);
    const int called = channelOf(search.bases[base]);
    const Place place = placeUnder(search, base);
    if (called == noChannel || place.begin == place.end) continue;

    std::uint16_t height = 0;
    int second = noChannel;
    for (int channel = 0; channel < channelCount; ++channel) {
      if (channel == called) continue;
      const std::uint16_t found = highestTop(search.channels[channel], place);
      if (found <= height) continue;
      height = found;
      second = channel;
    }
    if (second == noChannel) continue;
    const auto samples = search.channels[called].subspan(place.begin, place.end - place.begin);
    const double ratio = ratioOf(height, *std::ranges::max_element(samples));
    if (ratio < search.ratio) continue;
    mixed.push_back({.position = i + 1, .second = channelLetters[second], .ratio = ratio});
  }
  return mixed;
}

}  // namespace Quillet
