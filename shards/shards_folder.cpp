#include "shards/shards_folder.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "shards/file_operations.h"

namespace Quillet {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view hiddenPrefix = ".quillet-shards-";
constexpr std::string_view retiredPrefix = ".joined-";
constexpr const char* planTable = "/plan.tsv";

bool hasEntry(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

/// Names of the entries of a folder; none when it can not be read.
std::vector<std::string> entriesOf(const std::string& path) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(path, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
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
  if (std::rename(hidden.c_str(), path_.c_str()) != 0) throwSystemError("can not make", path_);
  if (!old.empty()) removeTree(old);
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
  if (!old.empty()) removeTree(old);
}

std::string ShardsFolder::renameAway() const {
  if (!hasEntry(path_)) return {};
  const std::string hidden = makeHidden();
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

ProjectLock::ProjectLock(const std::string& project)
    : descriptor_(open(project.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (descriptor_ < 0 || flock(descriptor_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
  close(descriptor_);
  throw std::runtime_error("another quillet-shards plans or joins in " + project);
}

ProjectLock::~ProjectLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

}  // namespace Quillet
