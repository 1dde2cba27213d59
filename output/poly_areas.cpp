#include <algorithm>
#include <limits>

#include "output/poly_stages.h"
#include "output/sample_runs.h"

namespace Quillet {

std::int32_t truncateToInt32(double value) {
  // The bounds are exact doubles, and everything strictly between them truncates into range.
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

std::size_t zeroWordCount(std::size_t pointCount) { return SampleRuns::wordCount(pointCount); }

void normaliseAreas(std::span<const std::uint16_t> samples, float average, std::int32_t baseCount,
                    std::uint64_t* zeros, ChannelPeakArrays& peaks) {
  constexpr double heightUnit = 0.00006103515625;  // 2^-14

  const auto pointCount = static_cast<std::int64_t>(samples.size());
  const std::int32_t* const positions = peaks.positions.get();
  const std::uint32_t* const heights = peaks.heights.get();
  std::int32_t* const normalised = peaks.normalisedHeights.get();

  const SampleRuns runs(samples.data(), samples.size(), zeros);
  // A peak that no run reaches keeps 0.
  std::fill_n(normalised, baseCount, 0);

  // One pass over bases and samples, in order. Only runs that hold a peak are examined.
  std::int64_t passed = 0;  // the samples before this index are done
  for (std::int32_t base = 0; base < baseCount && positions[base] < pointCount;) {
    const std::int64_t position = positions[base];
    // Deliberate: a peak before a sample that is done gets nothing, nor does a peak on a sample of
    // 0.
    if (position < passed || samples[static_cast<std::size_t>(position)] == 0) {
      passed = std::max(passed, position);
      ++base;
      continue;
    }

    const std::int64_t end = runs.endFrom(position);
    // Deliberate: wraps modulo 2^32.
    const std::uint32_t area = runs.area(runs.startBefore(position), end);
    passed = end;

    // Deliberate: the peak of a later base shares in this run even when it lies before the run.
    const std::int32_t first = base;
    std::uint16_t heightSum = 0;
    for (; base < baseCount && positions[base] < end; ++base) {
      // Deliberate: wraps modulo 65536, and a sum that wraps to 0 counts as 0.
      heightSum = static_cast<std::uint16_t>(heightSum + heights[base]);
    }

    const double height = average;
    const double scaled = heightSum == 0 ? height : height * area / heightSum;
    const double factor = scaled * heightUnit;
    for (std::int32_t k = first; k < base; ++k) {
      normalised[k] = truncateToInt32(factor * heights[k]);
    }
  }
}

}  // namespace Quillet
