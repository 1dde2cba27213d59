#include "shards/held_shard.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

#include "shards/file_operations.h"

namespace Quillet {

namespace {

constexpr const char* resultName = "result";
constexpr const char* messagesName = "result/messages";
constexpr const char* messagesEnd = "/messages";

}  // namespace

HeldShard::HeldShard(const ShardFolder& folder)
    : folder_(folder),
      descriptor_(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (!descriptor_.isOpen()) fail("is no shard");
}

bool HeldShard::isDone() const {
  return ::faccessat(descriptor_.number(), messagesName, F_OK, 0) == 0;
}

bool HeldShard::isInPlace() const {
  struct stat held;
  struct stat named;
  return ::fstat(descriptor_.number(), &held) == 0 && ::stat(folder_.path().c_str(), &named) == 0 &&
         held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

void HeldShard::checkInPlace() const {
  if (isInPlace()) return;
  errno = ENOENT;
  fail("has been removed");
}

HeldShard::Publication HeldShard::publish(const AttemptFolder& attempt) const {
  const std::string result = attempt.path() + '/' + resultName;
  // Engines make folders for their outputs, and remove single files of earlier ones: what is there
  // without messages is moved away, and removed once there is a result.
  const std::string aside = attempt.nameOnceGone();
  Publication publication = Publication::published;
  for (;;) {
    checkInPlace();
    if (::renameat(AT_FDCWD, result.c_str(), descriptor_.number(), resultName) == 0) break;
    if (errno == EXDEV) return Publication::otherFileSystem;
    if (errno != ENOTEMPTY && errno != EEXIST) fail("gets no result");
    if (isDone() || isDoneOnceMoved(aside)) {
      publication = Publication::doneBefore;
      break;
    }
  }
  removeTree(folder_.path() + '/' + aside);
  return publication;
}

bool HeldShard::isDoneOnceMoved(const std::string& aside) const {
  if (::renameat(descriptor_.number(), resultName, descriptor_.number(), aside.c_str()) != 0) {
    if (errno == ENOENT) return false;
    fail("has a result that can not be replaced");
  }
  // Another attempt may have published in between: its result goes back, unless a third one has
  // published since.
  if (::faccessat(descriptor_.number(), (aside + messagesEnd).c_str(), F_OK, 0) != 0) return false;
  if (::renameat(descriptor_.number(), aside.c_str(), descriptor_.number(), resultName) != 0 &&
      !isDone()) {
    fail("has a result that can not be moved back");
  }
  return true;
}

void HeldShard::fail(const char* what) const {
  throw std::runtime_error(folder_.path() + ' ' + what + ": " + std::strerror(errno));
}

}  // namespace Quillet
