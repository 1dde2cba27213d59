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
// file that the system gives a size of 0, at most this many bytes are read.
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
  // Checked before the file is opened: opening a pipe would wait for its writer.
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
  // Not repeated after an interruption: the descriptor is released all the same.
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

/// Reads the stretch that contains `count` bytes from `offset` on, or as much of it as the file
/// has. False, with the bytes unchanged, when memory is out.
bool FileWindow::load(std::int64_t offset, std::int64_t count) {
  if (isDamaged_) return read(offset, count);

  const bool whole = size_ <= wholeFileLimit;
  const std::int64_t start = whole ? 0 : offset / step * step;
  // Of a larger file one step more than `count`, since `offset` may lie anywhere in the first step.
  const std::int64_t wanted = whole ? size_ : std::min(step + count, size_ - start);
  if (!read(start, wanted)) return false;
  // A read error drops the whole stretch. The bytes asked for may lie outside the damage, so they
  // are read once more, alone.
  if (isDamaged_) read(offset, count);
  return true;
}

/// Reads `count` bytes from `offset` on, or as many as the file has there; an earlier end of the
/// file becomes the size. After an error no bytes are in memory. False, with the bytes unchanged,
/// when memory is out.
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

/// Makes room for `count` bytes, which may drop those in memory. False, with the bytes unchanged,
/// when memory is out.
bool FileWindow::makeRoom(std::int64_t count) {
  if (count <= room_) return true;
  std::unique_ptr<char[]> room(new (std::nothrow) char[static_cast<std::size_t>(count)]);
  if (!room) return false;
  bytes_ = std::move(room);
  room_ = count;
  return true;
}

}  // namespace Tessaly
