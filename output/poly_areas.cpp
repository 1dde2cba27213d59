#include <algorithm>
#include <limits>

#include "output/poly_peaks.h"

namespace Quillet {

std::int32_t truncateToInt32(double value) {
  // The bounds are exact doubles, and everything strictly between them truncates into range.
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

void normaliseAreas(const std::uint16_t* samples, std::uint32_t pointCount, float average,
                    const std::int32_t* peakPos, const std::uint32_t* peakAmp,
                    std::int32_t baseCount, std::int32_t* normAmp) {
  constexpr double heightUnit = 0.00006103515625;  // 2 to the power -14

  // What no run reaches stays 0.
  std::fill_n(normAmp, baseCount, 0);

  std::int32_t base = 0;  // only moves forward, whatever the order of the positions
  for (std::uint32_t end = 0; end < pointCount && base < baseCount;) {
    while (end < pointCount && samples[end] == 0) ++end;
    const std::uint32_t start = end;
    std::uint32_t area        = 0;  // wraps modulo 2^32
    while (end < pointCount && samples[end] != 0) area += samples[end++];

    while (base < baseCount && std::int64_t{peakPos[base]} < start) ++base;

    const std::int32_t first = base;
    std::uint16_t heightSum  = 0;
    for (; base < baseCount && std::int64_t{peakPos[base]} < end; ++base) {
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
