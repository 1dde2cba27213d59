#pragma once

#include "app/settings.h"

namespace Quillet {

/// Reads the user's defaults into `settings`, from the first ".quilletrc" that opens.
///
/// Looks in the working directory, in the home directory, and under the prefix in TESSALY_PATH;
/// without such a file it does nothing. Directory keywords take effect at once, all "flag" words
/// together at the end. Throws Tessaly::ParseError at the first bad line or flag.
void readResourceFile(Settings& settings);

}  // namespace Quillet
