#pragma once

#include <cstdint>
#include <optional>

#include "foundation/string.h"

namespace Quillet {

/// A base whose quality keeps its trace from being converted.
struct UnusableQuality {
  std::int32_t baseIndex;  // from 0; 40 to 59
  std::int32_t quality;    // 0, or 100 to 255; 0 also after the end of the quality text
};

/// The first base that the quality gate refuses; none when the trace may be converted.
///
/// The gate examines the bases 40 to 59 (from 0), or as many of them as there are, and accepts N
/// and n. `qualities` is the text of TraceFile::getBaseCalls(). It ends at the first stored 0, so
/// every later base has the quality 0.
std::optional<UnusableQuality> firstUnusableQuality(const Tessaly::String& bases,
                                                    const Tessaly::String& qualities);

}  // namespace Quillet
