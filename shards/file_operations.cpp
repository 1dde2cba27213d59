#include "shards/file_operations.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "audit/descriptor.h"

namespace Quillet {

namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 16;  // bytes

int openFile(const std::string& path, int flags) {
  return open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666);
}

}  // namespace

void throwSystemError(const std::string& what, const std::string& path) {
  const int error = errno;
  throw std::runtime_error(what + ' ' + path + ": " + std::strerror(error));
}

std::string absolutePath(const std::string& path) {
  if (path.starts_with('/')) return path;
  return std::filesystem::current_path().string() + '/' + path;
}

std::string readWholeFile(const std::string& path) {
  const Descriptor file(openFile(path, O_RDONLY));
  if (!file.isOpen()) throwSystemError("can not read", path);
  std::string bytes;
  std::array<char, chunkSize> buffer;
  for (;;) {
    const ssize_t count = readSome(file.number(), buffer.data(), buffer.size());
    if (count < 0) throwSystemError("can not read", path);
    if (count == 0) return bytes;
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

void makeFolder(const std::string& path) {
  if (mkdir(path.c_str(), 0777) != 0) throwSystemError("can not make", path);
}

void syncFolder(const std::string& path) {
  const Descriptor folder(openFile(path, O_RDONLY | O_DIRECTORY));
  // Not every file system can; some give EINVAL.
  if (folder.isOpen() && fsync(folder.number()) != 0 && errno != EINVAL && errno != ENOTSUP) {
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
