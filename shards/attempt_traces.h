#pragma once

#include <string>
#include <vector>

#include "shards/shard_folder.h"
#include "shards/stop_signals.h"

namespace Quillet {

/// One name of a shard and what an attempt has of it.
struct AttemptTrace {
  std::string name;         // in the shard
  std::string link;         // the path of its link in the shard; empty when there was no trace
  std::string attemptName;  // under which the converter gets it
  std::string complaints;   // of gunzip about it, unless it stays packed
  bool isLeftOut = false;   // stays packed, and its path is not for a shell
};

/// Makes the attempt's folder of traces, `attemptPath`: links, and unpacked files in place of .gz
/// unless they stay packed. Where nothing is packed, there is no list and nothing else lies in the
/// shard's own folder, it is one link to that. One entry for each name of the shard. Throws
/// std::runtime_error, also when a trace has gone since the plan, and Stopped.
std::vector<AttemptTrace> bringTraces(const ShardFolder& shard, const ShardContents& contents,
                                      const std::string& attemptPath, bool keepGzip,
                                      const StopSignals& signals);

/// Throws std::runtime_error when the shard's own folder was given and holds other files by now:
/// the converter may have taken one of them for a trace.
void checkBrought(const ShardFolder& shard, const ShardContents& contents,
                  const std::string& attemptPath);

/// Throws std::runtime_error when the trace has gone since the plan.
void checkIsThere(const AttemptTrace& trace);

}  // namespace Quillet
