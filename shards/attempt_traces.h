#pragma once

#include <string>
#include <vector>

#include "shards/shard_folder.h"
#include "shards/stop_signals.h"

namespace Quillet {

/// One name of a shard and what an attempt has of it.
struct AttemptTrace {
  std::string name;         // in the shard
  std::string target;       // of its link in the shard; empty when there was no trace to link to
  std::string attemptName;  // under which the converter gets it
  std::string complaints;   // of gunzip about it, unless it stays packed
  bool isLeftOut = false;   // stays packed, and its path is not for a shell
};

/// Fills the attempt's folder of traces, whose path ends in "/": links, and unpacked files in place
/// of .gz unless they stay packed. One entry for each name of the shard. Throws std::runtime_error,
/// also when a trace has gone since the plan, and Stopped.
std::vector<AttemptTrace> bringTraces(const ShardFolder& shard, const ShardContents& contents,
                                      const std::string& attemptPath, bool keepGzip,
                                      const StopSignals& signals);

/// Throws std::runtime_error when the trace has gone since the plan.
void checkIsThere(const AttemptTrace& trace);

}  // namespace Quillet
