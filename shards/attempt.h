#pragma once

#include <string>
#include <vector>

#include "shards/attempt_folder.h"
#include "shards/attempt_traces.h"
#include "shards/run_messages.h"
#include "shards/shard_folder.h"
#include "shards/stop_signals.h"

namespace Quillet {

/// One attempt at a shard: a whole project in a private folder, and what becomes the result.
///
/// Borrows its arguments. Errors: std::runtime_error, and Stopped. Use: construct, convert() once.
class Attempt {
 public:
  Attempt(const ShardFolder& shard, const ShardContents& contents, const AttemptPlace& place,
          const StopSignals& signals);

  const AttemptFolder& folder() const { return folder_; }

  /// Converts the shard's traces, checks that each name has a result or a message, and makes the
  /// folder `result` of the attempt. Returns the messages.
  std::string convert(bool keepGzip);

 private:
  std::string at(const std::string& name) const { return folder_.path() + '/' + name; }
  std::string sampleOf(const std::string& name) const;
  void makeProject(bool keepGzip);
  std::vector<NameMessages> runOverAll() const;
  std::string composed(const std::vector<NameMessages>& said) const;
  std::string ownMessage(const AttemptTrace& trace, const char* what) const;
  void checkResults(const std::vector<std::string>& samples) const;
  void makeResult(const std::string& messages) const;

  const ShardFolder& shard_;
  const ShardContents& contents_;
  const StopSignals& signals_;
  const AttemptFolder folder_;
  std::vector<AttemptTrace> traces_;
};

}  // namespace Quillet
