#include <algorithm>
#include <utility>

#include "output/height_key.h"
#include "output/lanes.h"
#include "output/maximum_tree.h"
#include "output/poly_stages.h"

namespace Quillet {

namespace {

/// The stored height of a sample that is a maximum, and of 0 for any other. A sample is a maximum
/// when 2 * sample - left - right > 3. In whole numbers: when it is at least 2 above the mean of
/// its neighbours, rounded up. That needs only 16 bits.
std::int16_t maximumAt(std::uint16_t left, std::uint16_t sample, std::uint16_t right) {
  const auto mean = static_cast<std::uint16_t>((left + right + 1) >> 1);
  const auto higher = sample > mean ? sample : mean;
  const auto excess = static_cast<std::uint16_t>(higher - mean);
  const auto kept = static_cast<std::uint16_t>(-static_cast<int>(excess > 1));  // all bits or none
  return storedHeight(sample & kept);
}

/// Stores the maxima of all channels as maximum_tree.h describes.
void markMaxima(const Channels& channels, std::int16_t* maxima) {
  const std::size_t count = channels.pointCount();
  if (count == 0) return;
  const std::uint16_t* const a = channels[0].data();
  const std::uint16_t* const c = channels[1].data();
  const std::uint16_t* const g = channels[2].data();
  const std::uint16_t* const t = channels[3].data();
  for (std::size_t i = 1; i + 1 < count; ++i) {
    std::int16_t* const marked = maxima + channelCount * i;
    marked[0] = maximumAt(a[i - 1], a[i], a[i + 1]);
    marked[1] = maximumAt(c[i - 1], c[i], c[i + 1]);
    marked[2] = maximumAt(g[i - 1], g[i], g[i + 1]);
    marked[3] = maximumAt(t[i - 1], t[i], t[i + 1]);
  }
  const std::size_t last = count - 1;
  std::int16_t* const lastOnes = maxima + channelCount * last;
  for (int channel = 0; channel < channelCount; ++channel) {
    const auto samples = channels[channel];
    // With one sample, `last - 1` wraps to a huge index, whose sample is 0.
    const auto sampleAt = [&](std::size_t k) { return k < count ? samples[k] : std::uint16_t{0}; };
    maxima[channel] = maximumAt(0, samples[0], sampleAt(1));
    lastOnes[channel] = maximumAt(sampleAt(last - 1), samples[last], 0);
  }
}

/// Truncated toward zero.
std::int64_t midpoint(std::int32_t left, std::int32_t right) {
  return (std::int64_t{left} + right) / 2;
}

/// The samples between two midpoints, without the midpoints, which only serve as neighbours.
/// Samples outside the trace are left out, since none of them is a maximum.
SearchRange rangeBetween(std::int64_t low, std::int64_t high, std::uint32_t pointCount) {
  return {std::max(low + 1, std::int64_t{0}), std::min(high, std::int64_t{pointCount}) - 1};
}

/// The lower midpoint of base `i`: midway to the base before; for the first base, half its own
/// peak. Its upper midpoint is the lower one of the next base.
std::int64_t lowMidpoint(const std::int32_t* peaks, std::int32_t i) {
  return i == 0 ? peaks[0] / 2 : midpoint(peaks[i - 1], peaks[i]);
}

/// The peak of each channel in one range; a height of 0 means that there is none.
struct Peaks {
  std::int32_t heights[channelCount] = {};
  std::int32_t positions[channelCount] = {};
};

/// Searches a range of any length.
Peaks scan(const std::int16_t* maxima, const SearchRange& range) {
  Peaks peaks;
  for (std::int64_t k = range.first; k <= range.last; ++k) {
    for (int channel = 0; channel < channelCount; ++channel) {
      const std::int32_t height = heightOf(maxima[channelCount * k + channel]);
      if (height <= peaks.heights[channel]) continue;
      peaks.heights[channel] = height;
      peaks.positions[channel] = positionAfter(static_cast<std::uint32_t>(k));
    }
  }
  return peaks;
}

constexpr std::int64_t shortestInLanes = 2;
constexpr std::int64_t longestInLanes = 16;  // bases are seldom further apart

/// Searches a range of shortestInLanes to longestInLanes samples: all four channels side by side,
/// two samples at a time. Branch-free: signal and length are unpredictable. Its plain twin is
/// scan(), which finds the same peaks. scan() for every range costs 16 % more CPU in a whole run.
Peaks scanInLanes(const std::int16_t* maxima, const SearchRange& range) {
  constexpr std::size_t pairSize = 2 * std::size_t{channelCount};
  using Pair = Lanes<std::int16_t, pairSize>;
  const std::int16_t* const start = maxima + channelCount * range.first;
  const std::int64_t lastPair = range.last - range.first - 1;

  Pair highest = everyLane<pairSize>(storedHeight(0));
  Pair pairOffset{};
  for (std::int64_t k = 0; k < longestInLanes; k += 2) {
    // After the end of the range, its last pair is read again. An odd number of samples has one
    // sample in two pairs.
    const std::int64_t offset = std::min(k, lastPair);
    const Pair heights = lanesAt<pairSize>(start + channelCount * offset);

    const Pair here = everyLane<pairSize>(static_cast<std::int16_t>(k));
    pairOffset = choose(heights > highest, here, pairOffset);
    highest = larger(heights, highest);
  }
  pairOffset = smaller(pairOffset, everyLane<pairSize>(static_cast<std::int16_t>(lastPair)));

  // Key::of(height, offset), joined from 16-bit halves: the height above, the inverted offset
  // below. The second sample of a pair has the offset + 1, so its inverted offset is 1 less.
  using Key = HeightKey<16>;
  using Keys = Lanes<std::int32_t, channelCount>;
  const Pair distance = ~pairOffset;
  const Keys best =
      larger(join<0>(highest, distance),
             join<channelCount>(highest, static_cast<Pair>(distance - std::int16_t{1})));

  const Keys height = Key::height(best) - std::int32_t{storedHeight(0)};  // adds the 32768 again
  const Keys offset = Key::index(best);
  const Keys position = positionAfter(static_cast<std::uint32_t>(range.first)) + offset;

  Peaks peaks;
  store(height, peaks.heights);
  store(choose(height == 0, Keys{}, position), peaks.positions);
  return peaks;
}

/// Stores what base `i` found in one channel.
void setPeak(ChannelPeakArrays& peaks, std::int32_t i, std::int32_t position,
             std::uint32_t height) {
  peaks.positions[static_cast<std::size_t>(i)] = position;
  peaks.heights[static_cast<std::size_t>(i)] = height;
}

/// Searches the ranges of the bases one by one. Returns how many bases are done: all, unless the
/// ranges overlap so much that the tree is faster.
std::int32_t searchByScanning(const CalledTrace& trace, const std::int16_t* maxima,
                              PeakTable& peaks) {
  // The ranges of ascending peaks do not overlap. The limit is above their length, since some
  // disorder is still searched fastest this way.
  const std::uint32_t pointCount = trace.channels.pointCount();
  const std::int32_t baseCount = trace.bases.length();
  std::int64_t samplesLeft = 4 * (std::int64_t{pointCount} + baseCount);

  std::int64_t low = baseCount == 0 ? 0 : lowMidpoint(trace.peaks, 0);
  for (std::int32_t i = 0; i < baseCount; ++i) {
    const std::int64_t high = lowMidpoint(trace.peaks, i + 1);
    const SearchRange range = rangeBetween(low, high, pointCount);
    const std::int64_t length = range.last - range.first + 1;
    samplesLeft -= std::max(length, std::int64_t{0});
    if (samplesLeft < 0) return i;

    const bool fitsLanes = shortestInLanes <= length && length <= longestInLanes;
    const Peaks found = fitsLanes ? scanInLanes(maxima, range) : scan(maxima, range);
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
      setPeak(peaks[channel], i, found.positions[channel],
              static_cast<std::uint32_t>(found.heights[channel]));
    }
    low = high;
  }
  return baseCount;
}

/// Searches the ranges of the bases from `firstBase` on by a tree, so that their length does not
/// matter.
void searchByTree(const CalledTrace& trace, std::int32_t firstBase, const std::int16_t* maxima,
                  PeakTable& peaks) {
  const std::uint32_t pointCount = trace.channels.pointCount();
  MaximumTree tree(pointCount);
  for (int channel = 0; channel < channelCount; ++channel) {
    tree.build(maxima, channel);
    for (std::int32_t i = firstBase; i < trace.bases.length(); ++i) {
      const std::int64_t low = lowMidpoint(trace.peaks, i);
      const std::int64_t high = lowMidpoint(trace.peaks, i + 1);
      const Peak peak = tree.find(rangeBetween(low, high, pointCount));
      setPeak(peaks[static_cast<std::size_t>(channel)], i, peak.position, peak.height);
    }
  }
}

/// Where the called channel has no peak, the position of the call itself is taken, with its sample
/// as the height.
void fallBackToCalls(const CalledTrace& trace, PeakTable& peaks) {
  for (std::int32_t i = 0; i < trace.bases.length(); ++i) {
    const int called = channelOf(trace.bases[i]);
    if (called == noChannel) continue;
    ChannelPeakArrays& found = peaks[static_cast<std::size_t>(called)];
    if (found.heights[static_cast<std::size_t>(i)] != 0) continue;

    const std::int32_t position = trace.peaks[i];
    const auto samples = std::as_const(trace.channels)[called];
    const bool inside = position >= 0 && static_cast<std::size_t>(position) < samples.size();
    setPeak(found, i, position, inside ? samples[static_cast<std::size_t>(position)] : 0);
  }
}

}  // namespace

void findPeaks(const CalledTrace& trace, std::int16_t* maxima, PeakTable& peaks) {
  markMaxima(trace.channels, maxima);
  const std::int32_t done = searchByScanning(trace, maxima, peaks);
  if (done < trace.bases.length()) searchByTree(trace, done, maxima, peaks);
  fallBackToCalls(trace, peaks);
}

}  // namespace Quillet
