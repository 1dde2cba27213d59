#pragma once

#include "app/settings.h"

namespace Quillet {

/// Reads the user's defaults from the first ".quilletrc" that opens into `settings`.
///
/// It is sought in the working directory, then in the home directory, then under the prefix that
/// TESSALY_PATH holds; none is fine. Directory keywords take effect as they are read, the "flag"
/// words together at the end. Throws Tessaly::ParseError at the first bad line or flag.
void readResourceFile(Settings& settings);

}  // namespace Quillet
