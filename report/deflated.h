#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Quillet {

/// The bytes as a zlib stream. `cuts` are places, ascending, after which bytes of another kind
/// follow: they get codes of their own. Repeated bytes are made short, other repetitions are not
/// looked for: in the levels of a picture these are rare, and the search takes five times as long.
std::string deflated(std::string_view bytes, std::span<const std::size_t> cuts = {});

}  // namespace Quillet
