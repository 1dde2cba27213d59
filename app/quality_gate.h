#pragma once

#include <cstdint>
#include <optional>

#include "foundation/string.h"

namespace Quillet {

/// A base whose quality keeps its trace from being converted.
struct UnusableQuality {
  std::int32_t baseIndex;  // from 0; 40 to 59
  std::int32_t quality;    // 0, or 100 to 255; 0 also where the quality text has ended
};

/// The first base that the quality gate refuses; none when the trace may be converted.
///
/// The gate looks at the bases 40 to 59 (from 0), however many there are, and passes N and n.
/// `qualities` is the text that TraceFile::getBaseCalls gives: it ends at the first stored 0, and
/// from there on every quality counts as 0.
std::optional<UnusableQuality> firstUnusableQuality(const Tessaly::String& bases,
                                                    const Tessaly::String& qualities);

}  // namespace Quillet
