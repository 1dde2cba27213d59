#pragma once

namespace Quillet {

/// Writes the table of flags to the standard error stream.
void printHelp();

/// One run of the program: settings, resource file, flags, then the whole project.
///
/// Returns after the batch. With -version or -help it ends the process with status 0. Exceptions go
/// to main.
void run(int argc, const char* const* argv);

}  // namespace Quillet
