#pragma once

#include <cstddef>

#include "shards/shard_plan.h"

namespace Quillet {

/// The most names of a shard, for so many processes: few enough that all of them are busy to the
/// end, and that one shard's unpacked traces need little room.
std::size_t sizeForProcesses(std::size_t nameCount, std::size_t processCount);

/// Plans, has `processCount` processes of this program run the shards, and joins. The exit status
/// is that of the join: 2 when a run has failed. Such a run's own messages are printed, those of
/// the others come from the join. Throws what planShards() and joinShards() throw.
int runAllShards(const PlanOptions& options, std::size_t processCount);

}  // namespace Quillet
