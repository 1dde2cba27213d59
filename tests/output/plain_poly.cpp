#include "tests/output/plain_poly.h"

#include <cmath>
#include <sstream>

namespace {

std::uint16_t read(const std::vector<std::uint16_t>& samples, std::int64_t index) {
  const bool inside = index >= 0 && index < static_cast<std::int64_t>(samples.size());
  return inside ? samples[static_cast<std::size_t>(index)] : std::uint16_t{0};
}

std::uint16_t scaled(std::uint16_t sample, double factor) {
  const double product = factor * sample;
  return static_cast<std::uint16_t>(std::floor(product));  // the product is never negative
}

char letterOf(std::size_t channel) { return "ACGT"[channel]; }

/// The channel of a base; 4 when it has none.
std::size_t channelOfLetter(char base) {
  std::size_t channel = 0;
  while (channel < 4 && letterOf(channel) != base) ++channel;
  return channel;
}

std::int32_t toSigned32(double value) {
  const double whole = std::trunc(value);
  if (whole >= -2147483648.0 && whole <= 2147483647.0) return static_cast<std::int32_t>(whole);
  return -2147483647 - 1;
}

}  // namespace

void plainScale(PolyInput& input) {
  std::uint16_t highest = 0;
  for (const auto& samples : input.channels) {
    for (const std::uint16_t sample : samples) {
      if (sample > highest) highest = sample;
    }
  }
  double factor = 1.0;
  if (highest != 0) factor = 65280.0 / highest;
  for (auto& samples : input.channels) {
    for (std::uint16_t& sample : samples) sample = scaled(sample, factor);
  }
}

std::array<float, 4> plainBalance(PolyInput& input) {
  const std::int64_t last = input.pointCount() < 2500 ? input.pointCount() : 2500;
  std::vector<std::uint16_t> sum(2501, 0);
  for (std::int64_t k = 1499; k <= last; ++k) {
    int total = 0;
    for (const auto& samples : input.channels) total += read(samples, k);
    sum[static_cast<std::size_t>(k)] = static_cast<std::uint16_t>(total % 65536);
  }

  std::array<std::int32_t, 4> counts{};
  std::array<std::uint32_t, 4> totals{};
  for (std::int64_t k = 1501; k < last; ++k) {
    const auto at = static_cast<std::size_t>(k);
    const std::uint16_t left = sum[at - 2];
    const std::uint16_t mid = sum[at - 1];
    const std::uint16_t right = sum[at];
    if (!(left < mid && right < mid)) continue;
    std::size_t winner = 4;
    int largest = 0;
    for (std::size_t channel = 0; channel < 4; ++channel) {
      if (read(input.channels[channel], k) > largest) {
        largest = read(input.channels[channel], k);
        winner = channel;
      }
    }
    if (largest != 0) {
      counts[winner] += 1;
      totals[winner] += static_cast<std::uint32_t>(largest);
    }
  }

  std::array<float, 4> averages{};
  float minAverage = 1.0e30F;
  for (std::size_t channel = 0; channel < 4; ++channel) {
    if (counts[channel] == 0) continue;
    const auto average = totals[channel] / static_cast<std::uint32_t>(counts[channel]);
    averages[channel] = static_cast<float>(average);
    if (averages[channel] < minAverage) minAverage = averages[channel];
  }
  if (minAverage != 0.0F) {
    for (std::size_t channel = 0; channel < 4; ++channel) {
      if (averages[channel] == 0.0F) continue;
      const double factor = double{minAverage} / double{averages[channel]};
      for (std::uint16_t& sample : input.channels[channel]) sample = scaled(sample, factor);
    }
  }
  return averages;
}

void plainSearch(const PolyInput& input, PolyResult& result) {
  for (std::size_t channel = 0; channel < 4; ++channel) {
    const std::vector<std::uint16_t>& s = input.channels[channel];
    result.peakPos[channel].clear();
    result.peakAmp[channel].clear();
    for (std::size_t i = 0; i < input.bases.size(); ++i) {
      const std::int64_t here = input.peaks[i];
      const std::int64_t nextPeak = input.peaks[i + 1];
      const std::int64_t hi = (here + nextPeak) / 2;
      const std::int64_t lo = i == 0 ? here / 2 : (input.peaks[i - 1] + here) / 2;
      std::int32_t p2 = read(s, lo);
      std::int32_t p1 = read(s, lo + 1);
      std::int32_t best = 0;
      std::int64_t bestPos = 0;
      for (std::int64_t j = lo + 2; j <= hi; ++j) {
        const std::int32_t v = read(s, j);
        if (best < p1 && 2 * p1 - p2 - v > 3) {
          best = p1;
          bestPos = j;
        }
        p2 = p1;
        p1 = v;
      }
      if (best == 0 && letterOf(channel) == input.bases[i]) {
        bestPos = here;
        best = read(s, here);
      }
      result.peakPos[channel].push_back(static_cast<std::int32_t>(bestPos));
      result.peakAmp[channel].push_back(static_cast<std::uint32_t>(best));
    }
  }
}

void plainAreas(const PolyInput& input, const std::array<float, 4>& averages, PolyResult& result) {
  const std::int64_t pointCount = input.pointCount();
  const std::size_t n = input.bases.size();
  for (std::size_t channel = 0; channel < 4; ++channel) {
    const auto& s = input.channels[channel];
    const auto& peakPos = result.peakPos[channel];
    const auto& peakAmp = result.peakAmp[channel];
    auto& normAmp = result.normAmp[channel];
    normAmp.assign(n, 0);

    std::size_t b = 0;
    std::int64_t at = 0;
    while (at < pointCount) {
      while (at < pointCount && read(s, at) == 0) ++at;
      const std::int64_t start = at;
      std::uint32_t area = 0;
      for (; at < pointCount && read(s, at) != 0; ++at) area += read(s, at);
      const std::int64_t end = at;

      while (b < n && peakPos[b] < start) normAmp[b++] = 0;
      std::uint16_t heightSum = 0;
      const std::size_t first = b;
      while (b < n && peakPos[b] <= end - 1) {
        heightSum = static_cast<std::uint16_t>((heightSum + peakAmp[b]) % 65536);
        ++b;
      }
      double f = double{averages[channel]};
      if (heightSum != 0) f = (double{averages[channel]} * area) / heightSum;
      f = f * 0.00006103515625;
      for (std::size_t k = first; k < b; ++k) normAmp[k] = toSigned32(f * peakAmp[k]);
    }
  }
}

void plainSecondPeaks(const PolyInput& input, PolyResult& result) {
  result.secondBase.clear();
  result.secondPos.clear();
  for (std::size_t i = 0; i < input.bases.size(); ++i) {
    const std::size_t called = channelOfLetter(input.bases[i]);
    char letter = 'N';
    std::int32_t position = 0;
    float largest = 0.0F;
    for (std::size_t m = 0; called < 4 && m < 4; ++m) {
      const auto height = static_cast<float>(result.peakAmp[m][i]);
      if (m != called && height > largest) {
        largest = height;
        letter = letterOf(m);
        position = result.peakPos[m][i];
      }
    }
    result.secondBase += letter;
    result.secondPos.push_back(position);
  }
}

PolyResult plainPoly(PolyInput& input, PlainSearch search) {
  PolyResult result;
  plainScale(input);
  const std::array<float, 4> averages = plainBalance(input);
  search(input, result);
  plainAreas(input, averages, result);
  plainSecondPeaks(input, result);
  return result;
}

std::string plainPolyText(const std::string& sampleName, const PolyInput& input,
                          const PolyResult& result) {
  std::ostringstream text;
  text << sampleName << " 1 1 1 1 1\n";
  for (std::size_t i = 0; i < input.bases.size(); ++i) {
    const std::size_t called = channelOfLetter(input.bases[i]);
    const std::size_t second = channelOfLetter(result.secondBase[i]);
    text << input.bases[i] << ' ' << input.peaks[i] << ' '
         << (called < 4 ? result.normAmp[called][i] : 0) << " 0 " << result.secondBase[i] << ' '
         << result.secondPos[i] << ' ' << (second < 4 ? result.normAmp[second][i] : 0) << " 0";
    for (const auto& heights : result.peakAmp) text << ' ' << heights[i];
    text << '\n';
  }
  return text.str();
}
