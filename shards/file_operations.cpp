#include "shards/file_operations.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Quillet {

namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 16;  // bytes

/// A file descriptor that is closed with its owner.
class Descriptor {
 public:
  Descriptor(const std::string& path, int flags)
      : number_(open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666)) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  bool close() {
    const int number = std::exchange(number_, -1);
    return number < 0 || ::close(number) == 0;
  }

 private:
  int number_;
};

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

/// The number of bytes read; 0 at the end, negative after an error.
ssize_t readSome(int descriptor, std::array<char, chunkSize>& buffer) {
  ssize_t count = 0;
  do {
    count = ::read(descriptor, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  return count;
}

/// Copies the bytes to the disk; false, with errno set, when that fails.
bool copyBytes(int from, Descriptor& to) {
  std::array<char, chunkSize> buffer;
  for (;;) {
    const ssize_t count = readSome(from, buffer);
    if (count < 0) return false;
    if (count == 0) break;
    if (!writeAll(to.number(), {buffer.data(), static_cast<std::size_t>(count)})) return false;
  }
  return fsync(to.number()) == 0 && to.close();
}

void copyFile(const std::string& from, const std::string& to) {
  const Descriptor source(from, O_RDONLY);
  if (source.number() < 0) throwSystemError("can not read", from);
  Descriptor target(to, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
  if (target.number() < 0) throwSystemError("can not write", to);
  if (!copyBytes(source.number(), target)) throwSystemError("can not write", to);
}

}  // namespace

void throwSystemError(const std::string& what, const std::string& path) {
  const int error = errno;
  throw std::runtime_error(what + ' ' + path + ": " + std::strerror(error));
}

std::string readWholeFile(const std::string& path) {
  const Descriptor file(path, O_RDONLY);
  if (file.number() < 0) throwSystemError("can not read", path);
  std::string bytes;
  std::array<char, chunkSize> buffer;
  for (;;) {
    const ssize_t count = readSome(file.number(), buffer);
    if (count < 0) throwSystemError("can not read", path);
    if (count == 0) return bytes;
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

void writeWholeFile(const std::string& path, const std::string& bytes) {
  Descriptor file(path, O_WRONLY | O_CREAT | O_TRUNC);
  if (file.number() < 0 || !writeAll(file.number(), bytes) || !file.close()) {
    throwSystemError("can not write", path);
  }
}

void makeFolder(const std::string& path) {
  if (mkdir(path.c_str(), 0777) != 0) throwSystemError("can not make", path);
}

void moveFile(const std::string& from, const std::string& to, const std::string& hidden) {
  if (std::rename(from.c_str(), to.c_str()) == 0) return;
  if (errno != EXDEV) throwSystemError("can not write", to);
  try {
    copyFile(from, hidden);
    if (std::rename(hidden.c_str(), to.c_str()) != 0) throwSystemError("can not write", to);
  } catch (...) {
    unlink(hidden.c_str());
    throw;
  }
}

void syncFolder(const std::string& path) {
  const Descriptor folder(path, O_RDONLY | O_DIRECTORY);
  // Not every file system can; some give EINVAL.
  if (folder.number() >= 0 && fsync(folder.number()) != 0 && errno != EINVAL && errno != ENOTSUP) {
    throwSystemError("can not write", path);
  }
}

bool removeTree(const std::string& path) {
  // A program that still works there makes a folder "not empty" between its emptying and its
  // removal.
  constexpr int mostTries = 100;
  for (int tries = 0; tries < mostTries; ++tries) {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    if (!error) return true;
    if (error != std::errc::directory_not_empty && error != std::errc::file_exists &&
        error != std::errc::no_such_file_or_directory) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

}  // namespace Quillet
