#pragma once

namespace Quillet {

/// Writes the table of flags to the error stream.
void printHelp();

/// One run of the program: settings, resource file, flags, then the whole project.
///
/// Returns after the batch. Ends the process with status 0 for -version and -help, and lets every
/// exception pass to main.
void run(int argc, const char* const* argv);

}  // namespace Quillet
