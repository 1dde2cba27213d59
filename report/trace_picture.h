#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "audit/project_audit.h"
#include "trace/trace_content.h"

// What a page holds of one trace, so that it can draw it. Numbers are little-endian.
//
//   8 uint32  pointCount    samples of each channel of the trace; 0 without a trace
//             kept          samples of each channel that follow: 0, 2, 4...
//             top           amplitude of level 255
//             inSight       amplitude that is in sight at first
//             baseCount     calls of the trace
//             mixedCount    mixed bases, as many as the row names
//             resultCount   bases of the second reading
//             hasResult     1 when there is a second reading, else 0
//   4 * kept bytes          A, C, G, T: each level less the expected one, modulo 256
//   baseCount bytes         bases, as stored
//   baseCount bytes         qualities, as stored
//   2 * baseCount bytes     positions: differences, the low bytes, then the high bytes
//   mixedCount bytes        letter of the second peak
//   mixedCount bytes        its height in percent of the called one's, 255 at most
// and only with a second reading:
//   resultCount bytes       bases
//   resultCount bytes       qualities, 0 to 255
//   2 * resultCount bytes   positions, as above
//
// The level of a sample is round(sample * 255 / top), 255 at most. After the levels c, b, a,
// (4 a - 3 b + c) / 2 is expected, rounded down, then at least 0 and at most 255: the last step
// again, less half of the one before. Levels before the first are 0. A position is a 0-based sample
// index. Its int16 difference is that to the sum of the differences before it, which begin at 0: a
// jump that does not fit is made up for by those that follow.
namespace Quillet {

/// The amplitudes that a picture reaches to.
struct PictureScale {
  std::uint32_t top = 1;      // 4 medians of the called heights
  std::uint32_t inSight = 1;  // 2.5 medians
};

/// The called heights are the samples of the called channels at the positions of the bases A, C, G,
/// T in either case: those of the trim range, or else of all calls, when there are 20 and their
/// median is not 0. Without such heights both amplitudes are twice the 99th percentile of the
/// channel in which that is highest. 1 at least.
PictureScale pictureScale(const TraceContent& content, std::uint32_t trimStart,
                          std::uint32_t trimEnd);

struct TracePicture {
  std::string bytes;              // as described above
  std::vector<std::size_t> cuts;  // places after which bytes of another kind follow; ascending
};

/// The picture of a trace, and of the result where it says something else. No bytes when there is
/// neither a sample nor a call nor such a result.
TracePicture tracePicture(const AuditedSample& sample);

}  // namespace Quillet
