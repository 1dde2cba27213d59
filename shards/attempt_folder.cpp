#include "shards/attempt_folder.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "shards/file_operations.h"

namespace fs = std::filesystem;

namespace Quillet {

namespace {

constexpr const char* begun = "begun-";
constexpr const char* used = "attempt-";
constexpr const char* gone = "gone-";
constexpr std::size_t endSize = 6;  // of the characters that mkdtemp chooses

/// The path of an attempt in one of the three states, without its end.
std::string pathOf(const AttemptPlace& place, const char* state) {
  return place.folder + '/' + place.prefix + state;
}

// An attempt gets its second name at once; one that is still begun after this time was killed.
constexpr std::chrono::hours longestBegun(1);

std::string lockOf(const std::string& attempt) { return attempt + "/lock"; }

/// Gives a folder that mkdtemp made the permissions of any other new folder.
void giveUsualPermissions(const std::string& path) {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  struct stat status;
  // The bits above stay: a folder may pass on its group.
  const mode_t special = ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07000 : 0;
  ::chmod(path.c_str(), special | (0777 & ~mask));
}

/// What the system knows of an attempt's folder; none when it is not this user's.
std::optional<struct stat> statusOf(const std::string& attempt) {
  struct stat status;
  if (::lstat(attempt.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
      status.st_uid != ::geteuid()) {
    return std::nullopt;
  }
  return status;
}

/// Whether the attempt was begun so long ago that it will not get its name any more.
bool isGivenUp(const std::string& attempt) {
  const std::optional<struct stat> status = statusOf(attempt);
  if (!status) return false;
  const auto changed = std::chrono::system_clock::from_time_t(status->st_mtime);
  return std::chrono::system_clock::now() - changed > longestBegun;
}

/// Whether no process uses the attempt: its lock can be had, or is gone already.
bool isUnused(const std::string& attempt) {
  if (!statusOf(attempt)) return false;
  const Descriptor lock(
      ::open(lockOf(attempt).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
  if (!lock.isOpen()) return errno == ENOENT;
  return ::flock(lock.number(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

AttemptFolder::AttemptFolder(const AttemptPlace& place) {
  std::string made = pathOf(place, begun) + std::string(endSize, 'X');
  if (::mkdtemp(made.data()) == nullptr) throwSystemError("can not make", made);
  giveUsualPermissions(made);
  path_ = pathOf(place, used) + made.substr(made.size() - endSize);
  lock_.reset(::open(lockOf(made).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (lock_.isOpen()) {
    // Where the file system has no locks, no other process can lock it either.
    ::flock(lock_.number(), LOCK_EX | LOCK_NB);
    if (std::rename(made.c_str(), path_.c_str()) == 0) return;
  }
  const int error = errno;
  removeTree(made);
  errno = error;
  throwSystemError("can not make", path_);
}

// The lock goes last.
AttemptFolder::~AttemptFolder() { removeTree(path_); }

std::string AttemptFolder::nameOnceGone() const {
  return gone + path_.substr(path_.size() - endSize);
}

void removeUnusedAttempts(const AttemptPlace& place) {
  const std::string goneStart = pathOf(place, gone);
  // The end of a path that is an attempt's in this state; empty when it is not.
  const auto endOf = [&](const std::string& path, const char* state) {
    const std::string start = pathOf(place, state);
    const bool isOne = path.starts_with(start) && path.size() == start.size() + endSize;
    return isOne ? path.substr(start.size()) : std::string();
  };
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(place.folder, error)) {
    const std::string path = place.folder + '/' + entry.path().filename().string();
    std::string end;
    if (!endOf(path, gone).empty()) {
      removeTree(path);
    } else if (const std::string usedEnd = endOf(path, used); !usedEnd.empty()) {
      if (isUnused(path)) end = usedEnd;
    } else if (const std::string begunEnd = endOf(path, begun); !begunEnd.empty()) {
      if (isGivenUp(path)) end = begunEnd;
    }
    if (end.empty()) continue;
    // Renamed first: whoever still uses it after all can not publish it half removed.
    const std::string goneName = goneStart + end;
    if (std::rename(path.c_str(), goneName.c_str()) == 0) removeTree(goneName);
  }
}

}  // namespace Quillet
