#include "shards/new_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

#include "shards/file_operations.h"

namespace Quillet {

NewFile::NewFile(const std::string& path)
    : path_(path),
      descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {
  if (!descriptor_.isOpen()) throwSystemError("can not write", path_);
}

NewFile::~NewFile() {
  descriptor_.close();  // first: network file systems keep a removed file that is open
  if (!isFinished_) ::unlink(path_.c_str());
}

void NewFile::write(std::string_view bytes) {
  if (!writeAll(descriptor_.number(), bytes)) throwSystemError("can not write", path_);
  size_ += static_cast<std::int64_t>(bytes.size());
}

void NewFile::writeFrom(const std::string& path) {
  constexpr std::size_t chunkSize = std::size_t{1} << 18;
  const Descriptor source(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!source.isOpen()) throwSystemError("can not read", path);
  const auto buffer = std::make_unique_for_overwrite<char[]>(chunkSize);
  for (;;) {
    const ssize_t got = readSome(source.number(), buffer.get(), chunkSize);
    if (got < 0) throwSystemError("can not read", path);
    if (got == 0) return;
    write({buffer.get(), static_cast<std::size_t>(got)});
  }
}

void NewFile::clear() {
  if (::ftruncate(descriptor_.number(), 0) != 0 ||
      ::lseek(descriptor_.number(), 0, SEEK_SET) != 0) {
    throwSystemError("can not write", path_);
  }
  size_ = 0;
}

void NewFile::sync() {
  if (::fsync(descriptor_.number()) != 0) throwSystemError("can not write", path_);
}

void NewFile::finish() {
  // Some file systems find a full disk only when the file is closed.
  if (!descriptor_.close()) throwSystemError("can not write", path_);
  isFinished_ = true;
}

void writeNewFile(const std::string& path, std::string_view bytes, bool toDisk) {
  NewFile file(path);
  file.write(bytes);
  if (toDisk) file.sync();
  file.finish();
}

void copyToNewFile(const std::string& from, const std::string& to, bool toDisk) {
  NewFile file(to);
  file.writeFrom(from);
  if (toDisk) file.sync();
  file.finish();
}

void moveFile(const std::string& from, const std::string& to, const std::string& hidden) {
  if (std::rename(from.c_str(), to.c_str()) == 0) return;
  if (errno != EXDEV) throwSystemError("can not write", to);
  ::unlink(hidden.c_str());  // of a run that was killed
  copyToNewFile(from, hidden, true);
  if (std::rename(hidden.c_str(), to.c_str()) == 0) return;
  const int error = errno;
  ::unlink(hidden.c_str());
  errno = error;
  throwSystemError("can not write", to);
}

}  // namespace Quillet
