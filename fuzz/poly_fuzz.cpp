// Compares the peak computation with its plain twin, for any channels, bases and peak positions.
//
// Input bytes: 2 for the number of samples, 1 for the number of bases, 1 for the kind of positions
// (odd: 4 bytes each, anywhere; even: 2 bytes each, near the trace). Then the bases, then the
// positions. The rest is the signal, repeated until all channels are full.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/dirty_memory.h"
#include "fuzz/scratch_file.h"
#include "output/poly_peaks.h"
#include "tests/output/plain_poly.h"
#include "tests/output/poly_arrays.h"

namespace {

constexpr std::int64_t mostSamples = 2600;  // the channel balance looks at 1499..2500
constexpr std::int64_t longestPlainWalk = 20'000;

/// Reads big-endian numbers from the bytes. After the last byte it reads zeros.
class Source {
 public:
  Source(const std::uint8_t* bytes, std::size_t count) : bytes_(bytes), end_(bytes + count) {}

  std::uint32_t next(int size) {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i) value = value << 8 | (bytes_ == end_ ? 0U : *bytes_++);
    return value;
  }
  std::vector<std::uint8_t> rest() const { return {bytes_, end_}; }

 private:
  const std::uint8_t* bytes_;
  const std::uint8_t* end_;
};

PolyInput inputFrom(Source source) {
  PolyInput input;
  const std::size_t pointCount = source.next(2) % (mostSamples + 1);
  const std::uint32_t bases = source.next(1);
  const bool anywhere = source.next(1) % 2 == 1;
  for (std::uint32_t i = 0; i < bases; ++i) {
    const auto byte = static_cast<char>(source.next(1));
    input.bases += static_cast<unsigned char>(byte) < 192 ? "ACGT"[byte & 3] : byte;
  }
  for (std::uint32_t i = 0; i <= bases; ++i) {
    input.peaks.push_back(anywhere ? static_cast<std::int32_t>(source.next(4))
                                   : static_cast<std::int16_t>(source.next(2)));
  }
  const std::vector<std::uint8_t> signal = source.rest();
  std::size_t at = 0;
  for (auto& channel : input.channels) {
    channel.resize(pointCount);
    for (std::uint16_t& sample : channel) {
      if (signal.empty()) continue;
      sample = static_cast<std::uint16_t>(signal[at % signal.size()] << 8 |
                                          signal[(at + 1) % signal.size()]);
      at += 2;
    }
  }
  return input;
}

std::int64_t rangeStart(const PolyInput& input, std::size_t base) {
  const std::int64_t here = input.peaks[base];
  return base == 0 ? here / 2 : (input.peaks[base - 1] + here) / 2;
}

std::int64_t rangeEnd(const PolyInput& input, std::size_t base) {
  return (std::int64_t{input.peaks[base]} + input.peaks[base + 1]) / 2;
}

/// The number of samples that the plain search of the tests would visit in one channel.
std::int64_t plainWalk(const PolyInput& input) {
  std::int64_t length = 0;
  for (std::size_t i = 0; i < input.bases.size(); ++i) {
    length += std::max<std::int64_t>(rangeEnd(input, i) - rangeStart(input, i), 0);
  }
  return length;
}

/// The plain search, limited to the samples of the trace: outside it there is no maximum. The plain
/// search of the tests would take too long for far positions.
void searchNearTrace(const PolyInput& input, PolyResult& result) {
  for (std::size_t channel = 0; channel < 4; ++channel) {
    const std::vector<std::uint16_t>& samples = input.channels[channel];
    const auto read = [&](std::int64_t index) -> std::int32_t {
      return index < 0 || index >= input.pointCount() ? 0
                                                      : samples[static_cast<std::size_t>(index)];
    };
    for (std::size_t i = 0; i < input.bases.size(); ++i) {
      const std::int64_t here = input.peaks[i];
      std::int32_t best = 0;
      std::int64_t bestPos = 0;
      const std::int64_t last = std::min(rangeEnd(input, i), input.pointCount() + 2);
      for (auto j = std::max<std::int64_t>(rangeStart(input, i) + 2, 0); j <= last; ++j) {
        if (best < read(j - 1) && 2 * read(j - 1) - read(j - 2) - read(j) > 3) {
          best = read(j - 1);
          bestPos = j;
        }
      }
      if (best == 0 && "ACGT"[channel] == input.bases[i]) {
        bestPos = here;
        best = read(here);
      }
      result.peakPos[channel].push_back(static_cast<std::int32_t>(bestPos));
      result.peakAmp[channel].push_back(static_cast<std::uint32_t>(best));
    }
  }
}

PolyResult plainResult(PolyInput& input) {
  return plainPoly(input, plainWalk(input) <= longestPlainWalk ? plainSearch : searchNearTrace);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  const PolyInput input = inputFrom(Source(bytes, count));
  PolyInput expected = input;
  const PolyResult wanted = plainResult(expected);

  setDirt(0x5A);
  Quillet::PolyPeaks peaks;
  PolyInput other = input;  // an earlier trace of the same size
  std::reverse(other.channels.begin(), other.channels.end());
  std::reverse(other.peaks.begin(), other.peaks.end());
  computeWith(peaks, other);
  PolyInput found = input;
  require(computeWith(peaks, found) == wanted, "the peaks are those of the plain computation");
  require(found.channels == expected.channels, "and so are the rescaled channels");
  return 0;
}
