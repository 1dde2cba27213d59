#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace Quillet {

/// Whether the text is that of a whole .poly: a first line that ends in " 1 1 1 1 1", then nothing
/// but lines of twelve fields, `baseCount` of them or, when that is not known, any number. The
/// first byte of a line may be of any kind, a blank or a line feed, too; single blanks stand
/// between the fields.
bool isWholePoly(std::string_view text, std::optional<std::size_t> baseCount);

}  // namespace Quillet
