#pragma once

#include <string>
#include <string_view>

namespace Quillet {

/// Appends `text` with tab, line feed, carriage return, backslash and zero byte written as \t, \n,
/// \r, \\ and \0. For a terminal, other control characters are written as \x1b. All other bytes
/// stay.
void appendEscaped(std::string& line, std::string_view text, bool forTerminal);

}  // namespace Quillet
