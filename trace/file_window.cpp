#include "trace/file_window.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Tessaly {
namespace {

// A file of up to this many bytes is read whole, with one system read; traces are smaller. Of a
// file that gives its size as 0, at most this many bytes are looked for.
constexpr std::int64_t wholeFileLimit = 1 << 20;
// Larger files are read in stretches that start at multiples of this many bytes.
constexpr std::int64_t step = 1 << 16;

/// Size of the regular file under the path in bytes; -1 when there is none.
std::int64_t sizeOfRegularFile(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

/// Repeats the call while a signal interrupts it.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

}  // namespace

FileWindow::FileWindow(const char* path) {
  // Opening a pipe would wait for its writer, so the kind of entry is asked for first.
  const std::int64_t size = sizeOfRegularFile(path);
  if (size < 0) return;
  descriptor_ = uninterrupted([path] { return ::open(path, O_RDONLY | O_CLOEXEC); });
  if (!isOpen()) return;
  size_ = size;
  isSizeDoubted_ = size == 0;
}

FileWindow::FileWindow(FileWindow&& other) noexcept { *this = std::move(other); }

FileWindow& FileWindow::operator=(FileWindow&& other) noexcept {
  if (this == &other) return *this;
  close();
  descriptor_ = std::exchange(other.descriptor_, -1);
  size_ = std::exchange(other.size_, 0);
  isSizeDoubted_ = std::exchange(other.isSizeDoubted_, false);
  isDamaged_ = std::exchange(other.isDamaged_, false);
  bytes_ = std::move(other.bytes_);
  room_ = std::exchange(other.room_, 0);
  offset_ = std::exchange(other.offset_, 0);
  count_ = std::exchange(other.count_, 0);
  return *this;
}

FileWindow::~FileWindow() { close(); }

bool FileWindow::close() {
  if (!isOpen()) return false;
  // Not repeated when interrupted: the descriptor is given up all the same.
  ::close(std::exchange(descriptor_, -1));
  return true;
}

bool FileWindow::show(std::int64_t offset, std::int64_t count) {
  if (!isOpen()) return false;
  if (isSizeDoubted_ && count > 0) {
    size_ = wholeFileLimit;
    isSizeDoubted_ = false;
  }
  const std::int64_t end = std::min(offset + count, size_);
  if (offset >= end || bytesFrom(offset) >= end - offset) return true;
  return load(offset, end - offset);
}

std::int64_t FileWindow::bytesFrom(std::int64_t offset) const {
  return offset < offset_ ? 0 : std::max<std::int64_t>(offset_ + count_ - offset, 0);
}

/// Reads the stretch in which `count` bytes from `offset` on lie, or as much of it as the file has.
/// False, with the bytes as they were, without memory.
bool FileWindow::load(std::int64_t offset, std::int64_t count) {
  if (isDamaged_) return read(offset, count);

  const bool whole = size_ <= wholeFileLimit;
  const std::int64_t start = whole ? 0 : offset / step * step;
  const std::int64_t wanted = whole ? size_  // else: room for what starts in the first step
                                    : std::min(step + count, size_ - start);
  if (!read(start, wanted)) return false;
  // An error anywhere in a stretch loses all of it. Bytes without an error of their own must not go
  // with it: from here on, only what is asked for is read.
  if (isDamaged_) read(offset, count);
  return true;
}

/// Reads `count` bytes from `offset` on, or those up to the end of the file, which it notes; after
/// an error none. False, with the bytes as they were, without memory.
bool FileWindow::read(std::int64_t offset, std::int64_t count) {
  if (!makeRoom(count)) return false;
  offset_ = offset;
  count_ = 0;
  while (count_ < count) {
    const auto bytes = uninterrupted([&] {
      return pread(descriptor_, bytes_.get() + count_, static_cast<std::size_t>(count - count_),
                   offset + count_);
    });
    if (bytes < 0) {
      isDamaged_ = true;
      count_ = 0;
      return true;
    }
    if (bytes == 0) {  // the file has become shorter
      size_ = offset + count_;
      return true;
    }
    count_ += bytes;
  }
  return true;
}

/// Memory for `count` bytes; it may be other memory than before.
bool FileWindow::makeRoom(std::int64_t count) {
  if (count <= room_) return true;
  std::unique_ptr<char[]> room(new (std::nothrow) char[static_cast<std::size_t>(count)]);
  if (!room) return false;
  bytes_ = std::move(room);
  room_ = count;
  return true;
}

}  // namespace Tessaly
