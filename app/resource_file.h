#pragma once

#include "app/settings.h"

namespace Quillet {

/// Reads the user's defaults from the first ".quilletrc" that opens into `settings`.
///
/// It is sought in the working directory, then in the home directory, then under the prefix that
/// TESSALY_PATH holds; none is fine. Directory keywords take effect as they are read, the "flag"
/// words together at the end. Throws Tessaly::ParseError at the first bad line or flag.
/// Says on the standard error stream which file it reads.
void readResourceFile(Settings& settings);

/// The same without a word about the file.
void readResourceFileSilently(Settings& settings);

}  // namespace Quillet
