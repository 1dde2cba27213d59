#pragma once

#include <string>
#include <vector>

#include "shards/stop_signals.h"

namespace Quillet {

/// How a run of the converter ended, and what it printed.
struct ConverterRun {
  int status = 0;       // exit status, or 128 and the number of the signal that ended it
  std::string printed;  // to both its streams, in its order
};

/// Runs the converter with these flags, in the folder. It is the program `quillet` in the folder of
/// this program, or else the one that PATH finds. Throws std::runtime_error when it can not be
/// started, and Stopped.
ConverterRun runConverter(const std::string& folder, const std::vector<std::string>& flags,
                          const StopSignals& signals);

}  // namespace Quillet
