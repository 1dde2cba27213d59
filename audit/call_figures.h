#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "audit/sample_row.h"

namespace Quillet {

/// The figures of calls as stored, but for the mixed positions. Both arguments have one entry for
/// every base; a quality above 127 counts as 0.
CallFigures figuresOf(std::string_view bases, std::span<const std::uint8_t> qualities);

}  // namespace Quillet
