#pragma once

#include <cstdint>
#include <memory>

#include "foundation/channels.h"
#include "foundation/string.h"

namespace Quillet {

/// The input of the peak computation: a trace with its base calls.
///
/// Borrows everything. A sample outside the channels reads as 0. `peaks` are 0-based sample
/// indices, one more than the bases, in any order and perhaps outside the trace; null without
/// bases.
struct CalledTrace {
  Channels& channels;
  const Tessaly::String& bases;
  const std::int32_t* peaks;
};

/// The peaks of one channel, an entry for each base.
struct ChannelPeaks {
  const std::int32_t* positions;          // sample index after the maximum; 0 without a peak
  const std::uint32_t* heights;           // after both rescalings, 0..65280; 0 without a peak
  const std::int32_t* normalisedHeights;  // the peak's share of the area around it
};

/// The highest peak among the channels that were not called, an entry for each base.
struct SecondPeaks {
  const char* bases;              // N where there is none
  const std::int32_t* positions;  // 0 where there is none
};

/// Finds the peak of every called base and the highest competing one, with their heights.
///
/// Owns its results and its working storage. Both grow to the largest trace, so that one object
/// serves a whole batch. Accepts any peak positions; only a lack of memory throws. Time: linear in
/// samples and bases; with peaks out of order, a base may cost the logarithm of the samples.
/// Use: compute(), read the results, releaseLongTrace(); again for the next trace.
class PolyPeaks {
 public:
  PolyPeaks();
  ~PolyPeaks();
  PolyPeaks(const PolyPeaks&) = delete;
  PolyPeaks& operator=(const PolyPeaks&) = delete;

  /// Rescales the channels in place and finds the peaks of every base. Replaces the earlier
  /// results.
  void compute(const CalledTrace& trace);

  /// Results of the last compute(): channel 0..3 for A, C, G, T, with an entry for each base.
  ChannelPeaks channel(int index) const;
  SecondPeaks secondPeaks() const;

  /// Frees all storage, with the results, when it has grown beyond any instrument's trace.
  /// Otherwise one such trace would keep its memory for the rest of the batch.
  void releaseLongTrace();

 private:
  struct Storage;
  std::unique_ptr<Storage> storage_;
};

}  // namespace Quillet
