#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/trace_generator.h"

/// A base at which a second letter stands under the called one.
struct MixedBase {
  int index = 0;  // 0-based
  char letter = 'N';
  double ratio = 0.9;  // height of the second peak, measured by the called one
};

/// A second template that is read with the first from a base on.
struct SecondTemplate {
  int start = 0;      // 0-based
  std::string bases;  // from `start` on
  double ratio = 0.6;
};

/// What a capillary of an instrument sees. `bases` is the true sequence, all of it in reach.
struct InstrumentRead {
  std::uint32_t seed = 1;
  std::string bases;
  double signal = 850;    // height of a called peak of the middle, in the mean
  int fadingStart = 420;  // 0-based base from which signal and sharpness are lost
  std::optional<MixedBase> mixed = {};
  std::optional<SecondTemplate> second = {};
};

/// A trace as sequencing instruments record it; one seed always gives the same trace.
///
/// Near-Gaussian peaks, 12 samples apart with small irregularities. Their heights depend on the
/// channel and on the two bases before. The first 20 bases are messy, a blob of unbound dye stands
/// on the first TTT from base 70 on, signal fades and peaks broaden towards the end, and noise of 2
/// to 4 % of the signal is in all channels. The qualities say so: low at first, up to 62 in the
/// middle, falling at the end and at mixed bases. Samples go on after the last base.
TraceContents instrumentTrace(const InstrumentRead& read);

/// A trace of a capillary that failed: noise, and calls of a low quality in it.
TraceContents failedTrace(std::uint32_t seed, int baseCount);

/// Random bases with the composition of an animal's mitochondrion.
std::string mitochondrialBases(std::uint32_t seed, int count);

/// `bases` with about one in `every` replaced by another.
std::string relativeOf(const std::string& bases, std::uint32_t seed, std::uint32_t every);
