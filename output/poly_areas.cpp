#include <algorithm>
#include <limits>

#include "output/poly_peaks.h"
#include "output/sample_runs.h"

namespace Quillet {

std::int32_t truncateToInt32(double value) {
  // The bounds are exact doubles, and everything strictly between them truncates into range.
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

std::size_t zeroWordCount(std::size_t pointCount) { return SampleRuns::wordCount(pointCount); }

void normaliseAreas(const std::uint16_t* samples, std::uint32_t pointCount, float average,
                    const std::int32_t* peakPos, const std::uint32_t* peakAmp,
                    std::int32_t baseCount, std::uint64_t* zeros, std::int32_t* normAmp) {
  constexpr double heightUnit = 0.00006103515625;  // 2 to the power -14

  const SampleRuns runs(samples, pointCount, zeros);
  // What no run reaches stays 0.
  std::fill_n(normAmp, baseCount, 0);

  // Bases and samples are passed once, in order; only runs that hold a peak need be looked at.
  std::int64_t passed = 0;  // samples: what lies before is done with
  for (std::int32_t base = 0; base < baseCount && peakPos[base] < std::int64_t{pointCount};) {
    const std::int64_t position = peakPos[base];
    // Deliberate: a peak that lies before one already passed gets nothing, nor does one in a gap.
    if (position < passed || samples[position] == 0) {
      passed = std::max(passed, position);
      ++base;
      continue;
    }

    const std::int64_t end = runs.endFrom(position);
    // Deliberate: wraps modulo 2^32.
    const std::uint32_t area = runs.area(runs.startBefore(position), end);
    passed = end;

    // Deliberate: a peak that comes after one of this run and lies before it shares in it.
    const std::int32_t first = base;
    std::uint16_t heightSum = 0;
    for (; base < baseCount && peakPos[base] < end; ++base) {
      // Deliberate: wraps modulo 65536, and a sum that wraps to 0 counts as 0.
      heightSum = static_cast<std::uint16_t>(heightSum + peakAmp[base]);
    }

    const double height = average;
    const double scaled = heightSum == 0 ? height : height * area / heightSum;
    const double factor = scaled * heightUnit;
    for (std::int32_t k = first; k < base; ++k) normAmp[k] = truncateToInt32(factor * peakAmp[k]);
  }
}

}  // namespace Quillet
