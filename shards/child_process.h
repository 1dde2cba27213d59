#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

#include "audit/descriptor.h"
#include "shards/stop_signals.h"

namespace Quillet {

/// A program to start.
struct Command {
  std::vector<std::string> words;  // the program, a path or a name that PATH finds, and its words
  std::string folder;              // becomes the working directory and PWD; empty: they stay
};

/// A child process whose two output streams are read. It and what it has started are killed with
/// the object, and the child with this process.
class ChildProcess {
 public:
  /// `errors` takes its standard error; -1 sends it where its standard output goes. Standard input
  /// is empty. Throws std::runtime_error when the program can not be started.
  ChildProcess(const Command& command, const StopSignals& signals, int errors = -1);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Appends the next bytes of the output; false at its end. Throws Stopped.
  bool readSome(std::string& bytes);
  /// Waits for the end. The exit status, or 128 and the number of the signal that ended it. Throws
  /// std::runtime_error when the system does not tell it.
  int wait();

 private:
  /// Waits for the end; false when the system does not tell the status.
  bool reap(int& status);

  const StopSignals& signals_;
  Descriptor output_;
  pid_t id_ = 0;  // 0 once it has been waited for
};

}  // namespace Quillet
