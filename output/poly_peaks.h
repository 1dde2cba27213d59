#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/channels.h"
#include "foundation/string.h"

namespace Quillet {

/// A trace with the bases that were called in it: what the peak computation looks at.
///
/// Borrows everything. A sample that is read outside the channels is 0. `peaks` are 0-based sample
/// indices, one more than the bases, in any order and not necessarily inside the trace; null when
/// there are no bases.
struct CalledTrace {
  Channels& channels;
  const Tessaly::String& bases;
  const std::int32_t* peaks;
};

/// What was found in one channel, an entry for every base.
struct ChannelPeaks {
  std::unique_ptr<std::int32_t[]> positions;  // sample index after the maximum; 0 without a peak
  std::unique_ptr<std::uint32_t[]> heights;   // after both rescalings, 0..65280; 0 without a peak
  std::unique_ptr<std::int32_t[]> normalisedHeights;  // the peak's share of the area around it
};
using PeakTable = std::array<ChannelPeaks, channelCount>;

/// The strongest peak of another channel than the called one, an entry for every base.
struct SecondPeaks {
  std::unique_ptr<char[]> bases;              // N where there is none
  std::unique_ptr<std::int32_t[]> positions;  // 0 where there is none
};

/// For every called base: its peak and the strongest competing one, with their heights.
///
/// Owns its results and its working storage, which grow to the largest trace: one object serves a
/// whole batch. Errors: nothing but an allocation failure, whatever the peaks say. Time: in
/// proportion to samples and bases, with a logarithm where the peaks are in disorder.
/// Use: compute(), read the results, releaseLongTrace(); again for the next trace.
class PolyPeaks {
 public:
  /// Rescales the channels in place and finds the peaks of every base. Results of earlier traces
  /// are gone.
  void compute(const CalledTrace& trace);

  /// Of the last compute(): channel 0..3 for A, C, G, T; entries up to its number of bases.
  const ChannelPeaks& channel(int index) const { return peaks_[static_cast<std::size_t>(index)]; }
  const SecondPeaks& secondPeaks() const { return secondPeaks_; }

  /// Frees all storage, results included, where a trace was too long to be an instrument's, so that
  /// its size does not last for the rest of the batch.
  void releaseLongTrace();

 private:
  void reserve(std::size_t pointCount, std::size_t baseCount);

  PeakTable peaks_;
  SecondPeaks secondPeaks_;
  std::size_t baseCapacity_ = 0;

  std::unique_ptr<std::int16_t[]> maxima_;  // working storage of findPeaks
  std::unique_ptr<std::uint64_t[]> zeros_;  // working storage of normaliseAreas
  std::size_t pointCapacity_ = 0;
};

}  // namespace Quillet
