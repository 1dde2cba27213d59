#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"

/// The contents of one chromatogram, for every file format.
struct TraceContents {
  std::array<std::vector<int>, 4> channels;  // A, C, G, T; amplitudes 0..65535
  std::string bases;
  std::vector<int> qualities;  // one per base, 0..255
  std::vector<int> peaks;      // one per base: 0-based sample index, 0..65535

  AbifBuilder abif() const;
  /// Version 3.00 with 16-bit samples. The quality is the probability of the called base; those of
  /// the other bases are 0.
  ScfBuilder scf() const;
};

/// A realistic sequencing trace; one seed always gives the same trace.
///
/// Gaussian peaks with a little noise, 10 to 14 samples apart and lower towards the end. A few
/// bases are mixed: a second, lower peak is under the first. Qualities fall at both ends.
TraceContents believableTrace(std::uint32_t seed, int baseCount);

/// A realistic trace in which the bases 45 to 55 have no quality (0).
TraceContents doubtfulTrace(std::uint32_t seed, int baseCount);

/// Independent random samples, bases, qualities and ascending peaks, for property tests. Samples
/// are at most `highest`. Some bases are N, with a quality of 0: SCF has no other quality for them.
TraceContents randomTrace(std::uint32_t seed, int sampleCount, int baseCount, int highest);
