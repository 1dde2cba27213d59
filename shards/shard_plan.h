#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Quillet {

/// What `plan` is asked for.
struct PlanOptions {
  std::vector<std::string> projectFlags;  // those that the converter takes, in its own words
  std::optional<std::size_t> count;       // the most shards; 1 or more
  std::optional<std::size_t> size;        // else the most names of a shard; 1 or more
  bool force = false;                     // remove the shards that are there
};

/// The folders of a plan that was laid.
struct LaidPlan {
  std::vector<std::string> shards;      // absolute folders, in order
  std::vector<std::size_t> nameCounts;  // of each shard
};

/// The size that a plan gets which is not asked for one, from the number of its names.
using UsualSize = std::function<std::size_t(std::size_t nameCount)>;

/// Lays PROJECT/shards with the names that a plain run would convert now; nothing when there are
/// none. The folder is there whole or not at all. Without a count and a size, `usualSize` gives the
/// size. Throws std::runtime_error, or 1 after a message, and then changes nothing but what
/// `force` removes.
LaidPlan planShards(const PlanOptions& options, const UsualSize& usualSize = {});

}  // namespace Quillet
