#pragma once

#include "app/settings.h"

namespace Quillet {

/// Reads the user's defaults into `settings`, from the first ".quilletrc" that opens.
///
/// Looks in the working directory, in the home directory, and under the prefix in TESSALY_PATH;
/// without such a file it does nothing. Directory keywords take effect at once, all "flag" words
/// together at the end. Throws Tessaly::ParseError at the first bad line or flag.
/// Prints the file's name on the standard error stream.
void readResourceFile(Settings& settings);

/// The same without a word about the file.
void readResourceFileSilently(Settings& settings);

}  // namespace Quillet
