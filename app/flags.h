#pragma once

#include <string>
#include <vector>

#include "app/settings.h"

namespace Quillet {

/// Applies flag words, from left to right, to `settings`.
///
/// `source` says where the words come from, such as "COMMAND LINE". Throws a Tessaly::ParseError with
/// it at the first bad word; the words before it stay applied.
void applyFlags(Settings& settings, const std::vector<std::string>& words,
                const std::string& source);

}  // namespace Quillet
