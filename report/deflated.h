#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Quillet {

/// The bytes as a zlib stream. `cuts` are places, ascending, after which bytes of another kind
/// follow: they get codes of their own. Repeated bytes are made short, other repetitions are not
/// looked for: in what is left of samples these are rare, and the search takes four times as long.
std::string deflated(std::string_view bytes, std::span<const std::size_t> cuts = {});

}  // namespace Quillet
