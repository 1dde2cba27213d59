#pragma once

#include <cstdint>
#include <vector>

#include "foundation/string.h"
#include "output/poly_peaks.h"

namespace Quillet {

/// Calls with the peaks that were found for them, and the stretch to look at.
///
/// `positions` are 0-based sample indices, one for every base. `begin` and `end` are 0-based base
/// indices, the end exclusive; it may lie after the last base.
struct MixedSearch {
  const Tessaly::String& bases;
  const std::int32_t* positions;
  std::uint32_t pointCount;
  const PolyPeaks& found;
  std::uint32_t begin;
  std::uint32_t end;
  double ratio;  // least height of a second peak, measured by the called one
};

/// The bases A, C, G and T with a second peak that is high enough and stands under the call: from
/// the called position it is at most an eighth of the way between both neighbours away. 1-based.
std::vector<std::uint32_t> mixedPositions(const MixedSearch& search);

}  // namespace Quillet
