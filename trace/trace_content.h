#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/channels.h"
#include "foundation/string.h"

namespace Quillet {

/// The base calls of a trace, as the file stores them: nothing is cut, clipped or checked.
///
/// Base i has bases[i], qualities[i] and peaks[i]. Owns its arrays; without calls they hold
/// nothing.
struct BaseCalls {
  std::uint32_t count = 0;
  std::unique_ptr<char[]> bases;              // `count` letters; no zero byte follows them
  std::unique_ptr<std::uint8_t[]> qualities;  // `count`; 0 to 255, whatever the file holds
  std::unique_ptr<std::uint32_t[]> peaks;     // `count` + 1; 0-based sample indices, which need
                                              // not lie in the trace; the last is pointCount()

  BaseCalls() = default;
  /// Room for `callCount` calls, with values that are not determined.
  explicit BaseCalls(std::uint32_t callCount)
      : count(callCount),
        bases(std::make_unique_for_overwrite<char[]>(callCount)),
        qualities(std::make_unique_for_overwrite<std::uint8_t[]>(callCount)),
        peaks(std::make_unique_for_overwrite<std::uint32_t[]>(std::size_t{callCount} + 1)) {}

  /// Whether one of the qualities is above 9 as a signed byte: 10 to 127.
  bool hasUsableQualities() const {
    // Deliberate: a quality field of small values alone holds placeholders, and 128 and above count
    // as negative, so as placeholders too.
    constexpr std::int8_t largestPlaceholder = 9;
    return std::any_of(qualities.get(), qualities.get() + count, [](std::uint8_t quality) {
      return static_cast<std::int8_t>(quality) > largestPlaceholder;
    });
  }
};

/// Why a file could not be read as a trace.
enum class TraceFault {
  none,
  notFound,              // no file of that name, nor of that name with ".gz" added
  notATrace,             // the first bytes are those of no known format
  directoryCut,          // ABIF: the file ends inside the directory
  noBaseOrder,           // ABIF: no FWO_ 1 of four letters, each A, C, G or T
  noAnalysedChannels,    // ABIF: one of DATA 9 to 12 is missing or empty
  channelLengthsDiffer,  // ABIF: DATA 9 and the channel it is compared with
  callCountsDiffer,      // ABIF: PBAS 1, PCON 1 and PLOC 1
  dataBeyondFile,  // a count that the file is far too short for, or a channel at 2 GiB or later
};

/// What one trace file holds.
///
/// A reader returns it whole, or with a `fault`; then the rest means nothing.
struct TraceContent {
  Channels channels;
  BaseCalls calls;
  Tessaly::String callerName;  // the base-calling program; empty when the file names none
  TraceFault fault = TraceFault::none;

  TraceContent() = default;
  explicit TraceContent(TraceFault why) : fault(why) {}
};

}  // namespace Quillet
