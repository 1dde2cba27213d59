#include "tests/support/instrument_trace.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "tests/support/dice.h"

namespace {

constexpr char letters[] = "ACGT";
constexpr int messyEnd = 20;            // bases
constexpr int samplesAfterEnd = 600;    // after the last base
constexpr double sharpest = 3.0;        // standard deviation of a peak, in samples
constexpr double noiseShare = 0.028;    // of the signal, a mean
constexpr double shadowShare = 0.02;    // of a peak, in the place of the base before
constexpr std::size_t noiseEvery = 14;  // samples between peaks of noise, a mean

using Signals = std::array<std::vector<double>, 4>;

std::size_t channelOf(char base) { return std::string(letters).find(base); }

char otherThan(char base, Dice& dice) { return letters[(channelOf(base) + 1 + dice.below(3)) % 4]; }

void addPeak(std::vector<double>& signal, double centre, double height, double width) {
  const int middle = static_cast<int>(centre);
  const int reach = static_cast<int>(4 * width) + 1;
  const int last = std::min(middle + reach, static_cast<int>(signal.size()) - 1);
  for (int k = std::max(middle - reach, 0); k <= last; ++k) {
    const double distance = (k - centre) / width;
    signal[static_cast<std::size_t>(k)] += height * std::exp(-0.5 * distance * distance);
  }
}

/// How far the end of a read has come at a base: 0 before the fading, 1 after 400 bases of it.
double fadingAt(int base, int start) { return std::max(0.0, (base - start) / 400.0); }

double signalAt(const InstrumentRead& read, int base) {
  const double fading = fadingAt(base, read.fadingStart);
  return read.signal / (1.0 + 1.5 * fading * fading);
}

double widthAt(const InstrumentRead& read, int base) {
  const double messy = std::max(0.0, 1.0 - base / static_cast<double>(messyEnd));
  const double fading = fadingAt(base, read.fadingStart);
  return sharpest + 1.6 * messy + 1.35 * fading * std::sqrt(fading);
}

/// Heights by a base and the two before it: 0.45 to 1.5.
std::array<double, 64> contextHeights() {
  static constexpr std::array<double, 4> balance{1.05, 0.95, 0.9, 1.0};
  std::array<double, 64> heights{};
  Dice dice(7);
  for (std::size_t i = 0; i < heights.size(); ++i) {
    const std::size_t own = i / 16;
    const bool isWeak = letters[own] == 'G' && letters[i / 4 % 4] == 'A';
    heights[i] = balance[own] * (isWeak ? 0.55 + 0.2 * dice.unit() : 0.7 + 0.7 * dice.unit());
  }
  return heights;
}

/// What the channel and the two bases before make of a peak's height, the same wherever these three
/// bases stand.
double heightFactor(const std::string& bases, std::size_t index) {
  static const std::array<double, 64> heights = contextHeights();
  const std::size_t before = index < 1 ? 0 : channelOf(bases[index - 1]);
  const std::size_t first = index < 2 ? 0 : channelOf(bases[index - 2]);
  return heights[16 * channelOf(bases[index]) + 4 * before + first];
}

/// The samples at which the bases pass, not rounded.
std::vector<double> passings(const InstrumentRead& read, Dice& dice) {
  std::vector<double> centres;
  double position = 40 + dice.between(0, 30);
  for (std::size_t i = 0; i < read.bases.size(); ++i) {
    const bool isMessy = i < messyEnd;
    centres.push_back(position + dice.deviation() * (isMessy ? 1.6 : 0.5));
    position += 11.8 + 0.0004 * static_cast<double>(i) + dice.deviation() * (isMessy ? 1.2 : 0.3);
  }
  return centres;
}

/// Adds the peaks of one template whose first base passes at `centres[start]`.
void addTemplate(Signals& signals, const InstrumentRead& read, const std::vector<double>& centres,
                 int start, const std::string& bases, double share, Dice& dice) {
  for (std::size_t i = 0; i < bases.size(); ++i) {
    const std::size_t place = i + static_cast<std::size_t>(start);
    if (place >= centres.size()) return;
    const int base = static_cast<int>(place);
    const double height =
        signalAt(read, base) * share * heightFactor(bases, i) * (1.0 + 0.08 * dice.deviation());
    const double width = widthAt(read, base);
    std::vector<double>& signal = signals[channelOf(bases[i])];
    addPeak(signal, centres[place], height, width);
    if (place > 0) addPeak(signal, centres[place - 1], shadowShare * height, width);
  }
}

/// Primers and unresolved short fragments: peaks of all channels at the start.
void addMess(Signals& signals, const InstrumentRead& read, const std::vector<double>& centres,
             Dice& dice) {
  const double end = centres[messyEnd];
  for (int i = 0; i < 26; ++i) {
    const double position = end * dice.unit();
    const double share = 0.5 * (1.0 - position / end) + 0.1 * dice.unit();
    addPeak(signals[dice.below(4)], position, read.signal * share, 4.0 + 4.0 * dice.unit());
  }
}

/// The blob: unbound dye of two channels, highest in the middle of the first TTT from base 70 on,
/// where it looks like no second base. Returns its base.
int addBlob(Signals& signals, const InstrumentRead& read, const std::vector<double>& centres,
            Dice& dice) {
  const std::size_t found = read.bases.find("TTT", 70);
  if (found == std::string::npos) return -1;
  const double height = read.signal * (0.4 + 0.5 * dice.unit());
  addPeak(signals[channelOf('T')], centres[found + 1], height, 13.0);
  addPeak(signals[channelOf('C')], centres[found + 1], 0.3 * height, 12.0);
  return static_cast<int>(found + 1);
}

void addNoise(std::vector<double>& signal, double level, Dice& dice) {
  const std::size_t count = signal.size() / noiseEvery;
  for (std::size_t i = 0; i < count; ++i) {
    const double place = dice.unit() * static_cast<double>(signal.size());
    addPeak(signal, place, level * (0.35 + 0.9 * dice.unit() * dice.unit()),
            3.0 + 3.0 * dice.unit());
  }
}

/// Takes the baseline off as instruments do, and rounds; what is below 0 becomes 0.
std::vector<int> recorded(const std::vector<double>& signal, double grain, Dice& dice) {
  std::vector<int> samples;
  samples.reserve(signal.size());
  double last = 0;
  for (const double value : signal) {
    last = 0.7 * last + grain * dice.deviation();  // slower than the samples
    samples.push_back(std::max(0, static_cast<int>(value - 2.0 + last)));
  }
  return samples;
}

/// Low for 20 bases, then 50 to 62, falling with the fading and over the last 15 bases.
std::vector<int> profile(const InstrumentRead& read, int blob, Dice& dice) {
  const int count = static_cast<int>(read.bases.size());
  std::vector<int> qualities;
  double dip = 0;
  for (int i = 0; i < count; ++i) {
    dip = std::max(0.0, dip - 4.0);
    if (dice.below(24) == 0) dip = 18.0 * dice.unit();  // a hard stretch of a few bases
    const double fromStart = i < messyEnd ? 4.0 + 0.25 * i : 11.0 + 2.6 * (i - messyEnd);
    const double fading = std::max(0.0, (i - read.fadingStart - 180) / 230.0);
    const double fromEnd = 4.0 + 2.5 * (count - 1 - i);
    const double blobLoss = blob < 0 ? 0.0 : std::max(0.0, 26.0 - 7.0 * std::abs(i - blob));
    const double middle = 62.0 - 52.0 * std::min(1.0, fading) - dip - blobLoss;
    const double value = std::min({fromStart, fromEnd, middle}) + 2.0 * dice.deviation();
    qualities.push_back(std::clamp(static_cast<int>(value), 3, 62));
  }
  return qualities;
}

/// Lowers the quality of a mixed base, and that of its neighbours a little.
void lowerAround(std::vector<int>& qualities, std::size_t index, Dice& dice) {
  const auto lower = [&](std::size_t i, int most) {
    if (i < qualities.size()) qualities[i] = std::min(qualities[i], most);
  };
  lower(index, dice.between(14, 24));
  lower(index - 1, dice.between(34, 48));
  lower(index + 1, dice.between(34, 48));
}

struct Height {
  std::size_t channel = 0;
  int sample = 0;
};

/// Where the four channels are highest, at most 5 samples from a place: the best that a caller
/// finds.
Height highestNear(const std::array<std::vector<int>, 4>& channels, int place) {
  Height highest{0, place};
  int most = -1;
  for (int k = place - 5; k <= place + 5; ++k) {
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
      const int value = channels[channel][static_cast<std::size_t>(k)];
      if (value <= most) continue;
      most = value;
      highest = {channel, k};
    }
  }
  return highest;
}

/// A caller errs where the signal is a mess: other letters, and N at the lowest qualities.
void misreadStart(TraceContents& trace, Dice& dice) {
  for (std::size_t i = 0; i < messyEnd; ++i) {
    if (dice.below(3) == 0) trace.bases[i] = otherThan(trace.bases[i], dice);
    if (trace.qualities[i] < 8 && dice.below(3) == 0) trace.bases[i] = 'N';
  }
}

}  // namespace

TraceContents instrumentTrace(const InstrumentRead& read) {
  Dice dice(read.seed);
  const std::vector<double> centres = passings(read, dice);
  const auto pointCount = static_cast<std::size_t>(centres.back()) + samplesAfterEnd;
  Signals signals;
  for (std::vector<double>& signal : signals) signal.assign(pointCount, 0.0);

  addTemplate(signals, read, centres, 0, read.bases, 1.0, dice);
  addMess(signals, read, centres, dice);
  const int blob = addBlob(signals, read, centres, dice);

  TraceContents trace;
  trace.bases = read.bases;
  trace.qualities = profile(read, blob, dice);
  if (read.second) {
    const SecondTemplate& second = *read.second;
    addTemplate(signals, read, centres, second.start, second.bases, second.ratio, dice);
    for (std::size_t i = 0; i < second.bases.size(); ++i) {
      const std::size_t place = i + static_cast<std::size_t>(second.start);
      if (place >= trace.bases.size()) break;
      if (second.bases[i] == read.bases[place]) continue;
      lowerAround(trace.qualities, place, dice);
      const double height = second.ratio * heightFactor(second.bases, i);
      if (height > heightFactor(read.bases, place)) trace.bases[place] = second.bases[i];
    }
  }
  if (read.mixed) {
    const auto index = static_cast<std::size_t>(read.mixed->index);
    const double height = signalAt(read, read.mixed->index) * heightFactor(read.bases, index);
    const double width = widthAt(read, read.mixed->index);
    // One base in two molecules of the well: the called peak loses what the other has.
    addPeak(signals[channelOf(read.bases[index])], centres[index], -0.45 * height, width);
    addPeak(signals[channelOf(read.mixed->letter)], centres[index],
            0.55 * read.mixed->ratio * height, width);
    lowerAround(trace.qualities, index, dice);
  }
  misreadStart(trace, dice);

  for (std::size_t channel = 0; channel < 4; ++channel) {
    addNoise(signals[channel], noiseShare * read.signal, dice);
    trace.channels[channel] = recorded(signals[channel], 0.003 * read.signal, dice);
  }
  for (const double centre : centres) trace.peaks.push_back(static_cast<int>(centre + 0.5));
  return trace;
}

TraceContents failedTrace(std::uint32_t seed, int baseCount) {
  Dice dice(seed);
  TraceContents trace;
  for (std::vector<int>& channel : trace.channels) {
    std::vector<double> signal(9000, 0.0);
    addNoise(signal, 32.0, dice);
    channel = recorded(signal, 3.0, dice);
  }
  double position = 30;
  for (int i = 0; i < baseCount; ++i) {
    const Height highest = highestNear(trace.channels, static_cast<int>(position));
    trace.bases += dice.below(3) == 0 ? 'N' : letters[highest.channel];
    trace.qualities.push_back(trace.bases.back() == 'N' ? dice.between(2, 4) : dice.between(3, 11));
    trace.peaks.push_back(highest.sample);
    position = highest.sample + 12.0 + 3.0 * std::abs(dice.deviation());
  }
  return trace;
}

std::string mitochondrialBases(std::uint32_t seed, int count) {
  Dice dice(seed);
  const std::string pool = "AAAAACCCCGGGTTTTTTT";
  std::string bases;
  for (int i = 0; i < count; ++i) {
    bases += pool[dice.below(static_cast<std::uint32_t>(pool.size()))];
  }
  return bases;
}

std::string relativeOf(const std::string& bases, std::uint32_t seed, std::uint32_t every) {
  Dice dice(seed);
  std::string relative = bases;
  for (char& base : relative) {
    if (dice.below(every) == 0) base = otherThan(base, dice);
  }
  return relative;
}
