#pragma once

#include <string>
#include <string_view>

namespace Quillet {

/// Any bytes as text of an HTML element or of a quoted attribute. What HTML gives a meaning, and
/// control characters, are written as character references. Bytes that are no UTF-8, and characters
/// that no reference can name (U+0000, U+0080 to U+009F), become U+FFFD.
std::string htmlText(std::string_view bytes);

}  // namespace Quillet
