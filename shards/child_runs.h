#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <sys/types.h>

#include "audit/descriptor.h"

namespace Quillet {

/// A child process that has ended.
struct EndedRun {
  std::size_t shard = 0;  // as it was given to start()
  bool isDone = false;    // exit status 0
  std::string messages;   // what it wrote, and what ended it when it was a signal
};

/// Processes of this program, each with a shard to run.
///
/// What a child writes is kept in memory. Children end with this process. Errors:
/// std::runtime_error.
class ChildRuns {
 public:
  ChildRuns() = default;
  ~ChildRuns();
  ChildRuns(const ChildRuns&) = delete;
  ChildRuns& operator=(const ChildRuns&) = delete;

  std::size_t count() const { return children_.size(); }
  void start(std::size_t shard, const std::string& folder);
  /// Waits for the end of any one. Call it only while there is one.
  EndedRun wait();

 private:
  struct Child {
    std::size_t shard;
    Descriptor output;  // a file in memory
    std::string folder;
  };
  std::map<pid_t, Child> children_;
};

}  // namespace Quillet
