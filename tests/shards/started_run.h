#pragma once

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

#include "tests/support/program.h"

/// A program that runs beside the test; killed with the object.
class StartedRun {
 public:
  StartedRun(const std::string& program, const ProgramRun& run);
  ~StartedRun();
  StartedRun(const StartedRun&) = delete;
  StartedRun& operator=(const StartedRun&) = delete;

  void signal(int number) const;
  /// Waits for the end. The status is that of ProgramResult.
  int wait();

 private:
  pid_t id_ = 0;
};

/// Waits until there is such a file; false when there is none after a long time.
bool appears(const std::string& file);
