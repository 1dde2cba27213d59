#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"

/// The contents of one chromatogram, whatever file format it is going to be written in.
struct TraceContents {
  std::array<std::vector<int>, 4> channels;  // A, C, G, T; amplitudes 0..65535
  std::string bases;
  std::vector<int> qualities;  // one per base, 0..255
  std::vector<int> peaks;      // one per base: 0-based sample index, 0..65535

  AbifBuilder abif() const;
  /// Version 3.00 with 16-bit samples; the quality stands under the called base, others are 0.
  ScfBuilder scf() const;
};

/// A believable sequencing trace, the same for the same seed.
///
/// Gaussian peaks over a little noise, 10 to 14 samples apart and lower towards the end; at a few
/// mixed positions a second base peaks under the first; qualities fall at both ends.
TraceContents believableTrace(std::uint32_t seed, int baseCount);

/// A believable trace whose instrument gave no quality (0) to the bases 45 to 55.
TraceContents doubtfulTrace(std::uint32_t seed, int baseCount);

/// Random samples, bases, qualities and ascending peaks, with no sense in them: what property tests
/// want. Samples are at most `highest`; some bases are N, with a quality of 0, which is all that
/// every file format can say of them.
TraceContents randomTrace(std::uint32_t seed, int sampleCount, int baseCount, int highest);
