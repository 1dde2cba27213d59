#pragma once

namespace Quillet {

/// The address for reports of a crash or an unexpected exception.
inline constexpr const char* contactAddress = "quillet@hallorand.example";

/// Prints a message for the user and ends the process with the signal's number as its exit status.
[[noreturn]] void criticalErrorHandler(int signalNumber);

/// Installs criticalErrorHandler for SIGSEGV and SIGBUS. main constructs it first.
class StartUp {
 public:
  StartUp();
};

}  // namespace Quillet
