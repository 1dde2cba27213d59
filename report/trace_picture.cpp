#include "report/trace_picture.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "foundation/channels.h"

namespace Quillet {

namespace {

constexpr std::size_t fewestPeaks = 20;  // that tell how high peaks are
constexpr std::size_t step = 2;          // every second sample is kept
constexpr std::uint32_t highestLevel = 255;
constexpr std::uint32_t highestByte = 255;

/// The position of a call, as the results have it: a stored index of 2^31 or more is negative.
std::int64_t positionOf(const BaseCalls& calls, std::size_t base) {
  return static_cast<std::int32_t>(calls.peaks[base]);
}

/// The heights of the bases from `begin` to before `end` that are A, C, G or T inside the trace.
std::vector<std::uint16_t> calledHeights(const TraceContent& content, std::uint32_t begin,
                                         std::uint32_t end) {
  std::vector<std::uint16_t> heights;
  const BaseCalls& calls = content.calls;
  for (std::size_t base = begin; base < std::min(end, calls.count); ++base) {
    const int letter = std::toupper(static_cast<unsigned char>(calls.bases[base]));
    const int channel = channelOf(static_cast<char>(letter));
    const std::int64_t position = positionOf(calls, base);
    if (channel == noChannel || position < 0 || position >= content.channels.pointCount()) continue;
    heights.push_back(content.channels[channel][static_cast<std::size_t>(position)]);
  }
  return heights;
}

/// The value that stands at `place` of the sorted values.
std::uint32_t valueAt(std::vector<std::uint16_t>& values, std::size_t place) {
  const auto found = values.begin() + static_cast<std::ptrdiff_t>(place);
  std::nth_element(values.begin(), found, values.end());
  return *found;
}

/// 0 where too few heights tell.
std::uint32_t medianOf(std::vector<std::uint16_t> heights) {
  return heights.size() < fewestPeaks ? 0 : valueAt(heights, heights.size() / 2);
}

std::uint32_t highestPercentile(const Channels& channels) {
  std::uint32_t highest = 0;
  for (int channel = 0; channel < channelCount && channels.pointCount() > 0; ++channel) {
    std::vector<std::uint16_t> samples(channels[channel].begin(), channels[channel].end());
    highest = std::max(highest, valueAt(samples, (samples.size() - 1) * 99 / 100));
  }
  return highest;
}

/// The last step again, less half of the one before: of the rules tried, the one that made pictures
/// of real traces shortest.
int expectedLevel(const std::array<int, 3>& before) {
  const int doubled = 4 * before[0] - 3 * before[1] + before[2];
  return std::clamp(doubled >> 1, 0, static_cast<int>(highestLevel));
}

/// The picture in the making.
class PictureBytes {
 public:
  explicit PictureBytes(std::size_t expected) { picture_.bytes.reserve(expected); }

  void word(std::size_t value) {
    for (int shift = 0; shift < 32; shift += 8) byte(value >> shift);
  }
  /// Keeps the lowest eight bits.
  void byte(std::size_t value) { picture_.bytes += static_cast<char>(value & highestByte); }
  void all(std::span<const char> values) { picture_.bytes.append(values.data(), values.size()); }

  /// The levels of a channel, less what is expected of each. Real traces take a seventh less than
  /// by the differences to the last level.
  void channel(std::span<const std::uint16_t> samples, std::uint32_t top) {
    std::array<int, 3> before{};  // the last level first
    for (std::size_t i = 0; i < samples.size(); i += step) {
      const std::uint32_t rounded = (2 * highestLevel * samples[i] + top) / (2 * top);
      const auto level = static_cast<int>(std::min(rounded, highestLevel));
      byte(static_cast<std::size_t>(level - expectedLevel(before)));
      before = {level, before[0], before[1]};
    }
  }

  /// Differences of `count` positions, as two planes of bytes. `at` gives the position of an index.
  template <typename At>
  void positions(std::size_t count, At at) {
    using Limits = std::numeric_limits<std::int16_t>;
    std::string& bytes = picture_.bytes;
    const std::size_t low = bytes.size();
    const std::size_t high = low + count;
    bytes.resize(high + count);
    picture_.cuts.push_back(high);
    std::int64_t reached = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const std::int64_t jump = at(i) - reached;
      const std::int64_t difference =
          std::clamp(jump, std::int64_t{Limits::min()}, std::int64_t{Limits::max()});
      reached += difference;
      const auto bits = static_cast<std::uint16_t>(difference);  // two's complement
      bytes[low + i] = static_cast<char>(bits & highestByte);
      bytes[high + i] = static_cast<char>(bits >> 8);
    }
  }

  /// Bytes of another kind follow.
  void cut() { picture_.cuts.push_back(picture_.bytes.size()); }

  TracePicture taken() { return std::move(picture_); }

 private:
  TracePicture picture_;
};

/// A ratio in percent, rounded, 255 at most.
std::uint32_t percentOf(double ratio) {
  const double percent = 100 * ratio + 0.5;
  return percent < highestByte ? static_cast<std::uint32_t>(percent) : highestByte;
}

void putTrace(PictureBytes& picture, const TraceContent& content, std::uint32_t top) {
  for (int channel = 0; channel < channelCount; ++channel) {
    picture.channel(content.channels[channel], top);
  }
  const BaseCalls& calls = content.calls;
  if (calls.count == 0) return;
  picture.cut();
  picture.all({calls.bases.get(), calls.count});
  picture.cut();
  picture.all({reinterpret_cast<const char*>(calls.qualities.get()), calls.count});
  picture.cut();
  picture.positions(calls.count, [&calls](std::size_t base) { return positionOf(calls, base); });
}

void putResult(PictureBytes& picture, const PhdResult& result) {
  picture.cut();
  picture.all(result.bases);
  picture.cut();
  for (const std::int32_t quality : result.qualities) {
    picture.byte(static_cast<std::size_t>(std::clamp(quality, 0, 255)));
  }
  picture.cut();
  picture.positions(result.positions.size(),
                    [&result](std::size_t base) { return std::int64_t{result.positions[base]}; });
}

}  // namespace

PictureScale pictureScale(const TraceContent& content, std::uint32_t trimStart,
                          std::uint32_t trimEnd) {
  std::uint32_t median = medianOf(calledHeights(content, trimStart, trimEnd));
  if (median == 0) median = medianOf(calledHeights(content, 0, content.calls.count));
  if (median > 0) return {.top = 4 * median, .inSight = (5 * median + 1) / 2};
  const std::uint32_t amplitude = std::max(2 * highestPercentile(content.channels), 1U);
  return {.top = amplitude, .inSight = amplitude};
}

TracePicture tracePicture(const AuditedSample& sample) {
  const TraceContent* const content = sample.content;
  const PhdResult* const result = sample.result;
  const std::size_t pointCount = content == nullptr ? 0 : content->channels.pointCount();
  const std::size_t baseCount = content == nullptr ? 0 : content->calls.count;
  const std::size_t resultCount = result == nullptr ? 0 : result->bases.size();
  if (pointCount == 0 && baseCount == 0 && result == nullptr) return {};

  const std::size_t kept = (pointCount + step - 1) / step;
  PictureScale scale;
  if (content != nullptr) {
    const std::optional<CallFigures>& figures = sample.row.figures;
    scale =
        pictureScale(*content, figures ? figures->trimStart : 0, figures ? figures->trimEnd : 0);
  }
  std::span<const MixedBase> mixed;
  if (sample.row.figures) mixed = sample.row.figures->mixed;
  constexpr std::size_t headSize = std::size_t{8} * 4;
  PictureBytes picture(headSize + channelCount * kept + 4 * (baseCount + resultCount) +
                       2 * mixed.size());
  for (const std::size_t word :
       {pointCount, kept, std::size_t{scale.top}, std::size_t{scale.inSight}, baseCount,
        mixed.size(), resultCount, std::size_t{result != nullptr}}) {
    picture.word(word);
  }
  if (content != nullptr) putTrace(picture, *content, scale.top);
  for (const MixedBase& base : mixed) picture.byte(static_cast<unsigned char>(base.second));
  for (const MixedBase& base : mixed) picture.byte(percentOf(base.ratio));
  if (result != nullptr) putResult(picture, *result);
  return picture.taken();
}

}  // namespace Quillet
