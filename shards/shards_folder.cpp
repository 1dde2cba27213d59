#include "shards/shards_folder.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "shards/file_operations.h"

namespace Quillet {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view hiddenPrefix = ".quillet-shards-";
constexpr std::string_view retiredPrefix = ".joined-";
constexpr const char* planTable = "/plan.tsv";

// What can not be looked at must not pass for something that is not there: it would be removed.

bool hasEntry(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) == 0) return true;
  if (errno != ENOENT && errno != ENOTDIR) throwSystemError("can not look at", path);
  return false;
}

/// Names of the entries of a folder, ascending; none without the folder.
std::vector<std::string> entriesOf(const std::string& path) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(path, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  if (error && error != std::errc::no_such_file_or_directory) {
    throw std::runtime_error("can not read " + path + ": " + error.message());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Removes what is no longer needed. Says so when it can not.
void discard(const std::string& path) {
  if (!removeTree(path)) {
    std::cerr << "quillet-shards: can not remove " << path << ", which is no longer needed"
              << std::endl;
  }
}

}  // namespace

ShardsFolder::ShardsFolder(const std::string& project)
    : project_(project), path_(project + "shards") {}

std::vector<ShardFolder> ShardsFolder::shards() const {
  std::vector<ShardFolder> found;
  for (const std::string& name : entriesOf(path_)) {
    if (name.starts_with('.')) continue;
    ShardFolder shard(path_ + '/' + name);
    // Each counts: a damaged shard must not pass for none.
    if (hasEntry(shard.names()) || hasEntry(shard.settings()) || hasEntry(shard.messages())) {
      found.push_back(std::move(shard));
    }
  }
  return found;
}

std::string ShardsFolder::makeHidden() const {
  for (int number = 0;; ++number) {
    std::string path = project_;
    path.append(hiddenPrefix).append(std::to_string(getpid())).append("-");
    path += std::to_string(number);
    if (mkdir(path.c_str(), 0777) == 0) return path;
    if (errno != EEXIST) throwSystemError("can not make", path);
  }
}

void ShardsFolder::replaceBy(const std::string& hidden) const {
  const std::string old = renameAway();
  if (std::rename(hidden.c_str(), path_.c_str()) != 0) {
    const int error = errno;
    if (!old.empty()) std::rename((old + "/shards").c_str(), path_.c_str());
    errno = error;
    throwSystemError("can not make", path_);
  }
  if (!old.empty()) discard(old);
}

void ShardsFolder::retire(const ShardFolder& shard) const {
  std::string retired = path_ + '/';
  retired.append(retiredPrefix).append(shard.name());
  removeTree(retired);  // of a plan before this one
  if (std::rename(shard.path().c_str(), retired.c_str()) != 0) {
    throwSystemError("can not remove", shard.path());
  }
  removeTree(retired);  // what stays goes with the whole folder
}

void ShardsFolder::retireAll() const {
  const std::string old = renameAway();
  if (!old.empty()) discard(old);
}

std::string ShardsFolder::renameAway() const {
  if (!hasEntry(path_)) return {};
  std::string hidden = makeHidden();
  if (std::rename(path_.c_str(), (hidden + "/shards").c_str()) != 0) {
    const int error = errno;
    rmdir(hidden.c_str());
    errno = error;
    throwSystemError("can not remove", path_);
  }
  return hidden;
}

void ShardsFolder::removeLeftovers() const {
  for (const std::string& name : entriesOf(project_)) {
    if (name.starts_with(hiddenPrefix)) removeTree(project_ + name);
  }
}

std::string ShardsFolder::foreignFile() const {
  if (hasEntry(path_ + planTable)) return {};
  for (const std::string& name : entriesOf(path_)) {
    const fs::path path = fs::path(path_) / name;
    std::error_code error;
    if (fs::symlink_status(path, error).type() != fs::file_type::directory) return path.string();
    // Engines make empty folders for what they expect.
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
      if (entry.symlink_status().type() != fs::file_type::directory) return entry.path().string();
    }
  }
  return {};
}

ProjectLock::ProjectLock(const std::string& project) : project_(project) {
  lock(project, O_RDONLY | O_DIRECTORY);
  lock(project + "shards" + planTable, O_RDWR);  // as network file systems want it
}

void ProjectLock::lock(const std::string& path, int flags) {
  Descriptor file(open(path.c_str(), flags | O_CLOEXEC));
  if (!file.isOpen()) return;
  if (flock(file.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    throw std::runtime_error("another quillet-shards plans or joins in " + project_);
  }
  locked_.push_back(std::move(file));
}

}  // namespace Quillet
