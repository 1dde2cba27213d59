#pragma once

namespace Quillet {

/// One run of quillet-report, from the command line to the exit status. Nothing is thrown.
int runReport(int argc, const char* const* argv);

}  // namespace Quillet
