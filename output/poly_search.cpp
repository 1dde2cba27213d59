#include <algorithm>
#include <utility>

#include "output/height_key.h"
#include "output/lanes.h"
#include "output/maximum_tree.h"
#include "output/poly_stages.h"

namespace Quillet {

namespace {

/// A maximum stands more than 3 above its neighbours when 2 * sample - left - right > 3. In whole
/// numbers that is: at least 2 above the neighbours' mean, rounded up, which needs 16 bits only.
std::int16_t maximumAt(std::uint16_t left, std::uint16_t sample, std::uint16_t right) {
  const auto mean = static_cast<std::uint16_t>((left + right + 1) >> 1);
  const auto higher = sample > mean ? sample : mean;
  const auto excess = static_cast<std::uint16_t>(higher - mean);
  const auto kept = static_cast<std::uint16_t>(-static_cast<int>(excess > 1));  // all bits or none
  return storedHeight(sample & kept);
}

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
    // The index before the first, which one sample asks for, is a huge one.
    const auto sampleAt = [&](std::size_t k) { return k < count ? samples[k] : std::uint16_t{0}; };
    maxima[channel] = maximumAt(0, samples[0], sampleAt(1));
    lastOnes[channel] = maximumAt(sampleAt(last - 1), samples[last], 0);
  }
}

std::int64_t midpoint(std::int32_t left, std::int32_t right) {
  return (std::int64_t{left} + right) / 2;  // truncates toward zero
}

/// What lies between two midpoints, without them, which only serve as neighbours, and without what
/// lies outside the trace, where nothing is a maximum.
SearchRange rangeBetween(std::int64_t low, std::int64_t high, std::uint32_t pointCount) {
  return {std::max(low + 1, std::int64_t{0}), std::min(high, std::int64_t{pointCount}) - 1};
}

/// Where the range of base `i` begins: midway to the base before; for the first base, at half its
/// own peak. It ends where that of the next base begins.
std::int64_t lowMidpoint(const std::int32_t* peaks, std::int32_t i) {
  return i == 0 ? peaks[0] / 2 : midpoint(peaks[i - 1], peaks[i]);
}

/// The peaks that all channels have in one range.
struct Peaks {
  std::int32_t heights[channelCount] = {};
  std::int32_t positions[channelCount] = {};
};

/// Looks through a range of any length.
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

/// Looks through a range that is neither shorter nor longer than these, two samples at a time, all
/// four channels side by side. Branch-free: signal and length are unpredictable. It finds what
/// scan() finds, its plain twin. To scan all ranges instead costs 16 % more CPU in a whole run.
Peaks scanInLanes(const std::int16_t* maxima, const SearchRange& range) {
  constexpr std::size_t pairSize = 2 * std::size_t{channelCount};
  using Pair = Lanes<std::int16_t, pairSize>;
  const std::int16_t* const start = maxima + channelCount * range.first;
  const std::int64_t lastPair = range.last - range.first - 1;

  Pair highest = everyLane<pairSize>(storedHeight(0));
  Pair pairOffset{};
  for (std::int64_t k = 0; k < longestInLanes; k += 2) {
    // After the end of the range, its last pair is looked at again. Of an odd number of samples,
    // one is in two pairs.
    const std::int64_t offset = std::min(k, lastPair);
    const Pair heights = lanesAt<pairSize>(start + channelCount * offset);

    const Pair here = everyLane<pairSize>(static_cast<std::int16_t>(k));
    pairOffset = choose(heights > highest, here, pairOffset);
    highest = larger(heights, highest);
  }
  pairOffset = smaller(pairOffset, everyLane<pairSize>(static_cast<std::int16_t>(lastPair)));

  // Key::of() the heights and the offsets, put together from halves.
  using Key = HeightKey<16>;
  using Keys = Lanes<std::int32_t, channelCount>;
  const Pair distance = ~pairOffset;
  const Keys best =
      larger(join<0>(highest, distance),
             join<channelCount>(highest, static_cast<Pair>(distance - std::int16_t{1})));

  const Keys height = Key::height(best) - std::int32_t{storedHeight(0)};  // undoes the 32768
  const Keys offset = Key::index(best);
  const Keys position = positionAfter(static_cast<std::uint32_t>(range.first)) + offset;

  Peaks peaks;
  store(height, peaks.heights);
  store(choose(height == 0, Keys{}, position), peaks.positions);
  return peaks;
}

/// Stores what base `i` found in one channel.
void setPeak(ChannelPeaks& peaks, std::int32_t i, std::int32_t position, std::uint32_t height) {
  peaks.positions[static_cast<std::size_t>(i)] = position;
  peaks.heights[static_cast<std::size_t>(i)] = height;
}

/// Looks through the ranges of the bases from end to end. Stops when the ranges together are too
/// long, and returns the number of bases done.
std::int32_t searchByScanning(const CalledTrace& trace, const std::int16_t* maxima,
                              PeakTable& peaks) {
  // The ranges of ascending peaks do not overlap; some disorder is still cheapest to scan.
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

/// Answers the ranges of the bases from `firstBase` on, however long they are.
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

/// The called base always has a position: where no peak was found, that of the call itself.
void fallBackToCalls(const CalledTrace& trace, PeakTable& peaks) {
  for (std::int32_t i = 0; i < trace.bases.length(); ++i) {
    const int called = channelOf(trace.bases[i]);
    if (called == noChannel) continue;
    ChannelPeaks& found = peaks[static_cast<std::size_t>(called)];
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
