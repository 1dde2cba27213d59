#pragma once

#include <csignal>

namespace Quillet {

/// Thrown when a signal asks the program to end.
struct Stopped {};

/// Holds back the signals that end the program, so that what was begun can be removed first.
///
/// They stay blocked while the object lives, and take effect when it goes. Signals that are ignored
/// stay ignored, as under nohup. A failed write gives no signal meanwhile: it fails.
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// Throws Stopped once a signal has come.
  void check() const;
  /// Can be read from once a signal has come: for poll().
  int descriptor() const { return descriptor_; }
  /// Undoes all: for a child process too.
  void restore() const;

 private:
  sigset_t held_{};
  sigset_t formerMask_{};
  struct sigaction formerPipe_ {};
  struct sigaction formerFileSize_ {};
  int descriptor_ = -1;
};

}  // namespace Quillet
