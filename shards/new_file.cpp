#include "shards/new_file.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

#include "shards/file_operations.h"
#include "shards/open_descriptor.h"

namespace Quillet {

NewFile::NewFile(const std::string& path)
    : path_(path),
      descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {
  if (descriptor_ < 0) throwSystemError("can not write", path_);
}

NewFile::~NewFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!isFinished_) ::unlink(path_.c_str());
}

void NewFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throwSystemError("can not write", path_);
    bytes.remove_prefix(static_cast<std::size_t>(count));
    size_ += count;
  }
}

void NewFile::writeFrom(const std::string& path) {
  constexpr std::size_t chunkSize = std::size_t{1} << 18;
  const OpenDescriptor source(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  const auto buffer = std::make_unique_for_overwrite<char[]>(chunkSize);
  for (;;) {
    const ssize_t got = ::read(source.number(), buffer.get(), chunkSize);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throwSystemError("can not read", path);
    if (got == 0) return;
    write({buffer.get(), static_cast<std::size_t>(got)});
  }
}

void NewFile::clear() {
  if (::ftruncate(descriptor_, 0) != 0 || ::lseek(descriptor_, 0, SEEK_SET) != 0) {
    throwSystemError("can not write", path_);
  }
  size_ = 0;
}

void NewFile::sync() {
  if (::fsync(descriptor_) != 0) throwSystemError("can not write", path_);
}

void NewFile::finish() {
  // Some file systems find a full disk only when the file is closed.
  if (::close(std::exchange(descriptor_, -1)) != 0) throwSystemError("can not write", path_);
  isFinished_ = true;
}

}  // namespace Quillet
