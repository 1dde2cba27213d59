#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/string.h"

namespace Quillet {

/// A trace with the bases that were called in it: what the peak computation looks at.
///
/// Borrows everything. The channels stand in the order A, C, G, T and hold `pointCount` samples
/// each; a sample that is read outside them is 0. `peaks` are 0-based sample indices, one more than
/// the bases, in any order and not necessarily inside the trace; null when there are no bases.
struct CalledTrace {
  std::uint16_t* const (&channels)[4];
  std::uint32_t pointCount;
  const Tessaly::String& bases;
  const std::int32_t* peaks;
};

/// For every called base: its peak and the strongest competing one, with their heights.
///
/// Channels are numbered 0..3 for A, C, G, T; positions are 0-based sample indices; heights are
/// amplitudes after both rescalings (0..65280). Owns its results, which describe the trace of the
/// last compute(), and the working storage. Both only grow, but for the working storage of a
/// trace that is far too long to be one, which goes at once: one object serves a whole batch.
/// Errors: nothing but an allocation failure, whatever the peaks say; the time is in proportion to
/// samples and bases, with a logarithm where the peaks are in disorder.
/// Use: construct once, then compute() for each trace and read the results.
class PolyPeaks {
 public:
  PolyPeaks();

  /// Rescales the channels in place and finds the peaks of every base.
  void compute(std::uint16_t* const (&channels)[4], std::uint32_t pointCount,
               const Tessaly::String& bases, const std::int32_t* peaks);

  // Results, each an array of one entry per base.
  const std::int32_t* peakPos(int channel) const { return peakPos_[channel].get(); }
  const std::uint32_t* peakAmp(int channel) const { return peakAmp_[channel].get(); }
  const std::int32_t* normAmp(int channel) const { return normAmp_[channel].get(); }
  const char* secondBase() const { return secondBase_.get(); }
  const std::int32_t* secondPos() const { return secondPos_.get(); }

 private:
  static constexpr std::size_t keptPointCount = 1 << 18;  // well above any instrument's trace

  void reserve(std::size_t pointCount, std::size_t baseCount);
  void releaseLongTrace();

  std::unique_ptr<std::int32_t[]> peakPos_[4];
  std::unique_ptr<std::uint32_t[]> peakAmp_[4];
  std::unique_ptr<std::int32_t[]> normAmp_[4];
  std::unique_ptr<char[]> secondBase_;
  std::unique_ptr<std::int32_t[]> secondPos_;
  std::size_t baseCapacity_ = 0;

  std::unique_ptr<std::int16_t[]> maxima_;  // working storage of findPeaks
  std::unique_ptr<std::uint64_t[]> zeros_;  // working storage of normaliseAreas
  std::size_t pointCapacity_ = 0;
  std::unique_ptr<std::uint16_t[]> summedSignal_;  // working storage of balanceChannels
};

// The stages of the computation, in their order.

/// Stage 1: scales all samples so that the highest one comes to 65280 (or just below).
void scaleToFullRange(std::uint16_t* const (&channels)[4], std::uint32_t pointCount);

inline constexpr std::size_t summedSignalSize = 2501;

/// Stage 2: takes each channel's average peak height from a fixed stretch of the trace and scales
/// those channels that have one to the smallest of them. An average of 0 means that the channel has
/// no peak there. `summedSignal` has room for summedSignalSize entries.
void balanceChannels(std::uint16_t* const (&channels)[4], std::uint32_t pointCount,
                     std::uint16_t* summedSignal, float (&averages)[4]);

/// Stage 3: finds the highest maximum of each channel around each base. `maxima` is working
/// storage, four entries a sample.
void findPeaks(const CalledTrace& trace, std::int16_t* maxima, std::int32_t* const (&peakPos)[4],
               std::uint32_t* const (&peakAmp)[4]);

/// Entries of the working storage of stage 4.
std::size_t zeroWordCount(std::size_t pointCount);

/// Stage 4, for one channel: shares the area of every run of signal out to the peaks in it. `zeros`
/// is working storage, zeroWordCount(pointCount) entries.
void normaliseAreas(const std::uint16_t* samples, std::uint32_t pointCount, float average,
                    const std::int32_t* peakPos, const std::uint32_t* peakAmp,
                    std::int32_t baseCount, std::uint64_t* zeros, std::int32_t* normAmp);

/// Stage 5: picks the highest peak of another channel for each base.
void chooseSecondPeaks(const Tessaly::String& bases, const std::int32_t* const (&peakPos)[4],
                       const std::uint32_t* const (&peakAmp)[4], char* secondBase,
                       std::int32_t* secondPos);

/// The value without its fraction, or -2147483648 when that does not fit (NaN included).
std::int32_t truncateToInt32(double value);

}  // namespace Quillet
