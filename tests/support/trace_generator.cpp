#include "tests/support/trace_generator.h"

#include <algorithm>
#include <cmath>

#include "tests/support/dice.h"

namespace {

constexpr char letters[] = "ACGT";

void addPeak(std::vector<double>& signal, int centre, double height, double width) {
  const int reach = static_cast<int>(4 * width);
  const int last = std::min(centre + reach, static_cast<int>(signal.size()) - 1);
  for (int k = std::max(centre - reach, 0); k <= last; ++k) {
    const double distance = (k - centre) / width;
    signal[static_cast<std::size_t>(k)] += height * std::exp(-0.5 * distance * distance);
  }
}

/// A quality that rises over the first 30 bases and falls over the last 120, as in real traces.
int qualityAt(int base, int baseCount, Dice& dice) {
  const int fromStart = 6 + base * 3 / 2;
  const int fromEnd = 6 + (baseCount - 1 - base) * 2 / 5;
  return std::clamp(std::min({fromStart, fromEnd, 58}) + dice.between(-3, 3), 2, 61);
}

}  // namespace

AbifBuilder TraceContents::abif() const {
  AbifBuilder builder;
  builder.bases(bases).qualities(qualities).peaks(peaks);
  for (std::size_t i = 0; i < 4; ++i) builder.channel(letters[i], channels[i]);
  return builder;
}

ScfBuilder TraceContents::scf() const {
  ScfBuilder builder;
  builder.bases(bases).peaks({peaks.begin(), peaks.end()});
  for (std::size_t i = 0; i < 4; ++i) {
    std::vector<int> called(bases.size(), 0);
    for (std::size_t base = 0; base < bases.size(); ++base) {
      if (bases[base] == letters[i]) called[base] = qualities[base];
    }
    builder.channel(letters[i], channels[i]).probabilities(letters[i], called);
  }
  return builder;
}

TraceContents believableTrace(std::uint32_t seed, int baseCount) {
  Dice dice(seed);
  TraceContents trace;
  int position = dice.between(8, 14);
  for (int i = 0; i < baseCount; ++i) {
    trace.bases += letters[dice.below(4)];
    trace.peaks.push_back(position);
    trace.qualities.push_back(qualityAt(i, baseCount, dice));
    position += dice.between(10, 14);
  }

  const std::size_t sampleCount = static_cast<std::size_t>(position + 10);
  std::array<std::vector<double>, 4> signals;
  for (std::vector<double>& signal : signals) signal.assign(sampleCount, 0.0);
  for (int i = 0; i < baseCount; ++i) {
    const std::size_t base = static_cast<std::size_t>(i);
    const std::size_t channel = std::string("ACGT").find(trace.bases[base]);
    const double fading = 1.0 - 0.6 * i / baseCount;
    const double height = (900.0 + 500.0 * dice.unit()) * fading;
    const int centre = trace.peaks[base];
    addPeak(signals[channel], centre, height, 3.0 + 1.2 * i / baseCount);
    if (i % 83 == 57) {  // a mixed position
      addPeak(signals[(channel + 1 + dice.below(3)) % 4], centre, 0.55 * height, 3.2);
      trace.qualities[base] = dice.between(12, 20);
    }
  }
  for (std::size_t channel = 0; channel < 4; ++channel) {
    trace.channels[channel].reserve(sampleCount);
    for (const double value : signals[channel]) {
      trace.channels[channel].push_back(static_cast<int>(value + 14.0 * dice.unit()));
    }
  }
  return trace;
}

TraceContents doubtfulTrace(std::uint32_t seed, int baseCount) {
  TraceContents trace = believableTrace(seed, baseCount);
  for (std::size_t i = 45; i <= 55 && i < trace.qualities.size(); ++i) trace.qualities[i] = 0;
  return trace;
}

TraceContents randomTrace(std::uint32_t seed, int sampleCount, int baseCount, int highest) {
  Dice dice(seed);
  TraceContents trace;
  for (std::vector<int>& channel : trace.channels) {
    for (int k = 0; k < sampleCount; ++k) channel.push_back(dice.between(0, highest));
  }
  for (int i = 0; i < baseCount; ++i) {
    const bool called = dice.below(12) != 0;
    trace.bases += called ? letters[dice.below(4)] : 'N';
    trace.qualities.push_back(called ? dice.between(1, 60) : 0);
    trace.peaks.push_back(dice.between(0, sampleCount - 1));
  }
  std::sort(trace.peaks.begin(), trace.peaks.end());
  return trace;
}
