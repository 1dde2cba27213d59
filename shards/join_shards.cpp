#include "shards/join_shards.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <unordered_set>

#include "app/project.h"
#include "app/settings.h"
#include "audit/companion_program.h"
#include "audit/escaped_text.h"
#include "foundation/directory.h"
#include "shards/file_operations.h"
#include "shards/new_file.h"
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
  Settings settings = settingsOfRun(projectFlags);
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

/// Whether a file is there and does not hold the bytes of the other one.
bool isOther(const std::string& path, const std::string& expected) {
  if (!Tessaly::Directory::exists(path.c_str())) return false;
  try {
    return readWholeFile(path) != readWholeFile(expected);
  } catch (const std::runtime_error&) {
    return true;  // such as a folder
  }
}

bool isSameFolder(const std::string& one, const std::string& other) {
  struct stat first;
  struct stat second;
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

/// The results of one finished shard.
///
/// Each step can be repeated: what was moved by a rename is no longer there, and what was copied is
/// copied again.
class FinishedShard {
 public:
  FinishedShard(const ShardFolder& folder, const std::string& project)
      : folder_(folder), settings_(readShard(folder).settings) {
    if (!isSameFolder(settings_.project, project)) {
      throw std::runtime_error(folder.path() + " was planned for " + settings_.project +
                               ", another folder: plan again with -f");
    }
    if (!fs::is_directory(folder.resultPhds()) || !fs::is_directory(folder.resultPolys())) {
      throw std::runtime_error(folder.result() +
                               " is not whole: remove it and run the shard again");
    }
    hidden_ = ".quillet-" + settings_.planId + '-' + folder.name();
    phds_ = namesIn(folder.resultPhds());
    polys_ = namesIn(folder.resultPolys());
  }

  /// A sample counts as done once its .phd.1 is there, so that comes last, and an old one goes
  /// first. Returns a message when something stays as it is.
  std::string moveResults() {
    checkWriteable(settings_.phdPath);
    checkWriteable(settings_.polyPath);
    std::string message;
    if (settings_.overwrite) {
      removeOld();
    } else {
      message = passOverDone();
    }
    moveAll(folder_.resultPolys(), polys_, settings_.polyPath);
    moveAll(folder_.resultPhds(), phds_, settings_.phdPath);
    return message;
  }

 private:
  static constexpr std::string_view phdSuffix = ".phd.1";
  static constexpr std::string_view polySuffix = ".poly";

  void removeOld() const {
    for (const std::string& name : phds_) {
      // What is no longer in the shard is the new one.
      if (!Tessaly::Directory::exists((folder_.resultPhds() + '/' + name).c_str())) continue;
      const std::string path = settings_.phdPath + name;
      if (unlink(path.c_str()) != 0 && errno != ENOENT) throwSystemError("can not remove", path);
    }
    syncFolder(settings_.phdPath);
  }

  /// Leaves out the samples that somebody else has converted since the plan. A copy of an
  /// interrupted join has the shard's own bytes.
  std::string passOverDone() {
    std::unordered_set<std::string> done;  // samples
    const auto isDone = [this, &done](const std::string& name) {
      if (!isOther(settings_.phdPath + name, folder_.resultPhds() + '/' + name)) return false;
      done.insert(name.substr(0, name.size() - phdSuffix.size()));
      return true;
    };
    std::erase_if(phds_, isDone);
    if (done.empty()) return {};
    std::erase_if(polys_, [&done](const std::string& name) {
      return done.contains(name.substr(0, name.size() - polySuffix.size()));
    });
    std::string message = "quillet-shards: " + folder_.name() + ": ";
    message +=
        std::to_string(done.size()) + " samples were converted after the plan and stay, such as ";
    appendEscaped(message, *std::min_element(done.begin(), done.end()), true);
    return message + '\n';
  }

  void moveAll(const std::string& from, const std::vector<std::string>& names,
               const std::string& to) const {
    const std::string source = from + '/';
    for (const std::string& name : names) moveFile(source + name, to + name, to + hidden_);
    syncFolder(to);
  }

  const ShardFolder& folder_;
  ShardSettings settings_;
  std::string hidden_;  // a short name that no other plan uses
  std::vector<std::string> phds_;
  std::vector<std::string> polys_;
};

/// Throws when the text can not be written.
void print(const std::string& text) {
  std::cerr.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
  if (std::cerr.good()) return;
  std::cerr.clear();
  throw std::runtime_error("can not write the messages to standard error");
}

/// The shard goes last, so that its messages are not lost.
void join(const ShardsFolder& shards, const ShardFolder& shard, const std::string& project) {
  const std::string message = FinishedShard(shard, project).moveResults();
  print(readWholeFile(shard.messages()) + message);
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
      join(shards, shard, root);
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
