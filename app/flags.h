#pragma once

#include <string>
#include <vector>

#include "app/settings.h"

namespace Quillet {

/// Applies flag words, left to right, to `settings`.
///
/// `source` names where the words come from ("COMMAND LINE"). Throws Tessaly::ParseError with it at
/// the first bad word; what the words before it changed stays changed.
void applyFlags(Settings& settings, const std::vector<std::string>& words,
                const std::string& source);

}  // namespace Quillet
