#pragma once

#include <string>
#include <string_view>

namespace Quillet {

/// The bytes in base64, padded with "=", without line ends.
std::string base64Of(std::string_view bytes);

}  // namespace Quillet
