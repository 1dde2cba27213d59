#include "shards/join_shards.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <unistd.h>

#include "app/flags.h"
#include "app/project.h"
#include "app/resource_file.h"
#include "app/settings.h"
#include "shards/file_operations.h"
#include "shards/shard_folder.h"
#include "shards/shards_folder.h"

namespace Quillet {

namespace {

namespace fs = std::filesystem;

constexpr int allJoined = 0;
constexpr int someUnfinished = 2;

/// The project's root as the converter finds it. Its folders are not looked at: the shards know
/// theirs.
std::string projectRoot(const std::vector<std::string>& projectFlags) {
  Settings settings;
  readResourceFileSilently(settings);
  applyFlags(settings, projectFlags, "COMMAND LINE");
  for (std::string* folder : {&settings.chromatDir, &settings.phdDir, &settings.polyDir}) {
    folder->clear();  // the root itself
  }
  Project project(settings);
  project.prepare(ProjectUse::read);
  return project.rootDir().text();
}

/// The names in a folder, hidden ones too, in ascending order.
std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void checkWriteable(const std::string& folder) {
  if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
    throwSystemError("can not write to", folder);
  }
}

/// The results of one finished shard.
///
/// Each step can be repeated: what was moved by a rename is no longer there, and what was copied is
/// copied again.
class FinishedShard {
 public:
  explicit FinishedShard(const ShardFolder& folder)
      : folder_(folder),
        settings_(readShard(folder).settings),
        hidden_(".quillet-" + settings_.planId + '-' + folder.name()),
        phds_(namesIn(folder.resultPhds())),
        polys_(namesIn(folder.resultPolys())) {}

  /// A sample counts as done once its .phd.1 is there, so that comes last, and an old one goes
  /// first.
  void moveResults() const {
    checkWriteable(settings_.phdPath);
    checkWriteable(settings_.polyPath);
    if (settings_.overwrite) removeOld();
    moveAll(folder_.resultPolys(), polys_, settings_.polyPath);
    moveAll(folder_.resultPhds(), phds_, settings_.phdPath);
  }

 private:
  void removeOld() const {
    for (const std::string& name : phds_) {
      const std::string path = settings_.phdPath + name;
      if (unlink(path.c_str()) != 0 && errno != ENOENT) throwSystemError("can not remove", path);
    }
    syncFolder(settings_.phdPath);
  }

  void moveAll(const std::string& from, const std::vector<std::string>& names,
               const std::string& to) const {
    for (const std::string& name : names) {
      moveFile(from + '/' + name, to + name, to + hidden_);
    }
    syncFolder(to);
  }

  const ShardFolder& folder_;
  ShardSettings settings_;
  std::string hidden_;  // a short name that no other plan uses
  std::vector<std::string> phds_;
  std::vector<std::string> polys_;
};

void join(const ShardsFolder& shards, const ShardFolder& shard) {
  FinishedShard(shard).moveResults();
  const std::string messages = readWholeFile(shard.messages());
  std::cerr.write(messages.data(), static_cast<std::streamsize>(messages.size())).flush();
  shards.retire(shard);
}

void nameUnfinished(const std::vector<std::string>& names) {
  std::string line = "quillet-shards: not finished:";
  for (const std::string& name : names) line += ' ' + name;
  std::cerr << line << std::endl;
}

}  // namespace

int joinShards(const std::vector<std::string>& projectFlags) {
  const std::string root = projectRoot(projectFlags);
  const ProjectLock lock(root);
  const ShardsFolder shards(root);
  shards.removeLeftovers();

  std::vector<std::string> unfinished;
  for (const ShardFolder& shard : shards.shards()) {
    if (shard.isDone()) {
      join(shards, shard);
    } else {
      unfinished.push_back(shard.name());
    }
  }
  if (unfinished.empty()) {
    if (shards.foreignFile().empty()) shards.retireAll();
    return allJoined;
  }
  nameUnfinished(unfinished);
  return someUnfinished;
}

}  // namespace Quillet
