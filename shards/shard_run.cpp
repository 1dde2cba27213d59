#include "shards/shard_run.h"

#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "shards/attempt.h"
#include "shards/file_operations.h"
#include "shards/held_shard.h"
#include "shards/new_file.h"
#include "shards/shard_folder.h"
#include "shards/stop_signals.h"

namespace fs = std::filesystem;

namespace Quillet {

namespace {

constexpr const char* scratchPrefix = "quillet-";  // of attempts in folders that others use too
constexpr const char* resultFolders[] = {"/phd_dir", "/poly_dir"};

/// Copies the result of an attempt into one on the shard's own file system. The messages are last.
void copyResult(const AttemptFolder& from, const AttemptFolder& to, const StopSignals& signals) {
  const std::string source = from.path() + "/result";
  const std::string target = to.path() + "/result";
  makeFolder(target);
  for (const char* folder : resultFolders) {
    makeFolder(target + folder);
    for (const fs::directory_entry& entry : fs::directory_iterator(source + folder)) {
      signals.check();
      copyToNewFile(entry.path(), target + folder + '/' + entry.path().filename().string());
    }
  }
  copyToNewFile(source + "/messages", target + "/messages", true);
}

/// Makes the attempt's result that of the shard; false when another one was first.
bool publish(const HeldShard& held, const ShardFolder& shard, const AttemptFolder& attempt,
             const StopSignals& signals) {
  using Publication = HeldShard::Publication;
  if (held.isDone()) return false;
  Publication publication = held.publish(attempt);
  if (publication == Publication::otherFileSystem) {
    const AttemptFolder nearby({.folder = shard.path(), .prefix = ""});
    copyResult(attempt, nearby, signals);
    publication = held.publish(nearby);
    if (publication == Publication::otherFileSystem) {
      throw std::runtime_error(shard.path() + " can not take a folder from its own subfolder");
    }
  }
  return publication == Publication::published;
}

/// The messages of an attempt. When it fails since the shard has been removed, the exception says
/// so: what else it might say is a consequence.
std::string convert(Attempt& attempt, bool keepGzip, const HeldShard& held) {
  try {
    return attempt.convert(keepGzip);
  } catch (const std::runtime_error&) {
    held.checkInPlace();
    throw;
  }
}

std::string convertShard(const ShardFolder& shard, const RunOptions& options,
                         const StopSignals& signals) {
  const HeldShard held(shard);
  const ShardContents contents = readShard(shard);
  AttemptPlace place{.folder = shard.path(), .prefix = ""};
  removeUnusedAttempts(place);
  if (options.scratch) {
    place = {.folder = ShardFolder(absolutePath(*options.scratch)).path(), .prefix = scratchPrefix};
    removeUnusedAttempts(place);
  }
  Attempt attempt(shard, contents, place, signals);
  std::string messages = convert(attempt, options.keepGzip, held);
  return publish(held, shard, attempt.folder(), signals) ? std::move(messages) : std::string();
}

}  // namespace

int runShard(const RunOptions& options) {
  const ShardFolder shard(absolutePath(options.shard));
  if (shard.isDone()) return 0;
  const StopSignals signals;
  try {
    std::cerr << convertShard(shard, options, signals) << std::flush;
    return 0;
  } catch (const Stopped&) {
    return 1;  // unless the signal's usual effect comes first, now that it is let through
  }
}

}  // namespace Quillet
