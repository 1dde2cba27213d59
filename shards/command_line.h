#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "shards/shard_plan.h"

namespace Quillet {

enum class ShardsTask { answer, plan, run, join, all };

/// What the command line of quillet-shards asks for. Fields of other tasks are empty.
struct ShardsCommand {
  ShardsTask task = ShardsTask::answer;
  std::string answer;            // what -h or --version prints
  PlanOptions plan;              // of plan and all; join takes the project's flags of it
  std::size_t processCount = 1;  // of all
  // Of run:
  std::string shard;
  std::optional<std::string> scratch;
  bool keepGzip = false;
};

/// Reads the words that follow the program's name. The converter's spellings -dir, -list, -nostrip,
/// -overwrite, -help and -version count too. Throws UsageError.
ShardsCommand readShardsCommand(const std::vector<std::string>& words);

}  // namespace Quillet
