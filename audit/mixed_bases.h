#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "audit/sample_row.h"
#include "foundation/channels.h"
#include "foundation/string.h"

namespace Quillet {

/// Calls with the channels that they stand on, and the stretch to look at.
///
/// `positions` are 0-based sample indices, one for every base. `begin` and `end` are 0-based base
/// indices, the end exclusive; it may lie after the last base.
struct MixedSearch {
  const Tessaly::String& bases;
  const std::int32_t* positions;
  const Channels& channels;  // as stored
  std::uint32_t begin;
  std::uint32_t end;
  double ratio;  // least height of a second peak, measured by the called one
};

inline constexpr std::size_t mostMixedBases = 32'768;

/// The bases A, C, G and T with a second peak that is high enough and stands under the call: from
/// the called position its top is at most an eighth of the way between both neighbours away, and at
/// most 32 samples. A peak falls below nine tenths of its height on both sides within half a base's
/// distance, so the flank of a neighbour is none. The highest one of the other channels counts, the
/// first of equal ones. The called height is the highest sample there of the called channel.
///
/// Heights are those of the stored samples, which a person sees, and not those of a .poly: there
/// the channels are balanced by a fixed part of the trace, which a short trace lacks and a dye blob
/// spoils.
///
/// At most `mostMixedBases`, the first ones: no read has so many, and a file that invents millions
/// of calls shall not fill the memory.
std::vector<MixedBase> mixedBases(const MixedSearch& search);

}  // namespace Quillet
