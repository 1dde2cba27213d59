#pragma once

#include <string>
#include <string_view>

namespace Quillet {

/// The bytes as a zlib stream. Repeated bytes are made short, other repetitions are not looked for:
/// in differences of samples these are rare, and the search takes four times as long.
std::string deflated(std::string_view bytes);

}  // namespace Quillet
