#pragma once

#include <string>
#include <vector>

#include "app/settings.h"

namespace Quillet {

/// Applies flag words, from left to right, to `settings`.
///
/// `source` names where the words come from, such as "COMMAND LINE". At the first bad word, throws
/// a Tessaly::ParseError with that name; the words before it stay applied.
void applyFlags(Settings& settings, const std::vector<std::string>& words,
                const std::string& source);

}  // namespace Quillet
