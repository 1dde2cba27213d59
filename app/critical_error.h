#pragma once

namespace Quillet {

/// Where users report what should not have happened.
inline constexpr const char* contactAddress = "quillet@hallorand.example";

/// Tells the user of a segmentation fault or a bus error and ends the process with the signal's
/// number as its exit status. Never returns.
[[noreturn]] void criticalErrorHandler(int signalNumber);

/// Made first in main: installs criticalErrorHandler for SIGSEGV and SIGBUS.
class StartUp {
 public:
  StartUp();
};

}  // namespace Quillet
