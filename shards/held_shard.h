#pragma once

#include <string>

#include "audit/descriptor.h"
#include "shards/attempt_folder.h"
#include "shards/shard_folder.h"

namespace Quillet {

/// The folder of a shard, held open: when it has been removed, nothing is done to another one that
/// has come under its path since.
class HeldShard {
 public:
  /// Throws std::runtime_error when there is no such folder.
  explicit HeldShard(const ShardFolder& folder);

  bool isDone() const;
  /// Whether the folder's path still leads to it.
  bool isInPlace() const;
  /// Throws std::runtime_error unless it is in place.
  void checkInPlace() const;

  enum class Publication { published, doneBefore, otherFileSystem };
  /// Renames the folder `result` of an attempt to the shard's result. Whoever is first wins: a
  /// result with messages can not be replaced. Any other folder under that name is, with what is in
  /// it. Throws std::runtime_error.
  Publication publish(const AttemptFolder& attempt) const;

 private:
  /// Renames what lies under the result's name. True, with it in its place again, when it is a
  /// result after all.
  bool isDoneOnceMoved(const std::string& aside) const;
  [[noreturn]] void fail(const char* what) const;

  const ShardFolder& folder_;
  Descriptor descriptor_;
};

}  // namespace Quillet
