#include "trace/file_reader.h"

#include <algorithm>
#include <new>
#include <sys/stat.h>
#include <utility>

#include "foundation/directory.h"

namespace Tessaly {
namespace {

// A file of up to this many bytes is read whole, with one system read; traces are smaller. Of a
// file that gives its size as 0, at most this many bytes are looked for.
constexpr std::int64_t wholeFileLimit = 1 << 20;
// Larger files are read in windows that start at multiples of this many bytes.
constexpr std::int64_t windowStep = 1 << 16;

/// Size of the regular file under the path in bytes; -1 when there is none.
std::int64_t sizeOfRegularFile(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
}

}  // namespace

FileReader::FileReader() : FileReader(defaultBlockSize) {}

FileReader::FileReader(std::int32_t blockSize) : blockSize_(std::max(blockSize, 0)) {
  rdbuf()->pubsetbuf(nullptr, 0);  // the window is the only buffer
}

void FileReader::setBufferSize(std::int32_t blockSize) {
  blockSize_ = std::max(blockSize, 0);
  buffer_.reset();
  bufferSize_ = 0;
  windowOffset_ += windowBytes_;  // here the stream stands
  windowBytes_ = 0;
  blockStart_ = nullptr;
  cursor_ = end_ = 0;
  atEnd_ = false;
}

bool FileReader::open(const String& path) { return open(path.text()); }

bool FileReader::open(const char* path) {
  if (is_open()) close();
  forgetFile();
  // Opening a pipe would wait for its writer, so the kind of entry is asked for first.
  const std::int64_t size = sizeOfRegularFile(path);
  if (size >= 0) std::ifstream::open(path, std::ios::in | std::ios::binary);
  clear();
  if (!is_open()) return false;
  // Files that the kernel makes up while they are read claim to be empty, as empty files do: the
  // limit stands in for the size until the first read finds the end. Without a block none is made.
  fileSize_ = size == 0 && blockSize_ > 0 ? wholeFileLimit : size;
  if (!showBlock(0)) enterBlock(0, 0);
  return true;
}

bool FileReader::exists(const String& path) { return Directory::exists(path); }

bool FileReader::exists(const char* path) { return Directory::exists(path); }

bool FileReader::seek(std::int32_t position) {
  if (position < 0 || blockSize_ == 0) return false;
  const std::int32_t blockIndex = position / blockSize_;
  if (blockIndex != block_) {
    const std::int32_t blockOffset = blockIndex * blockSize_;
    if (!showBlock(blockOffset)) return false;
    // Deliberate: this stores the block's byte offset, while the comparison above and refill()
    // count in blocks. After a move into any block but the first, the next move therefore reads its
    // block afresh, unless its number happens to equal the stored offset: then the block in view
    // stays, although it is another one. tell() is no file position after such a move.
    block_ = blockOffset;
  }
  cursor_ = position % blockSize_;
  return true;
}

std::int32_t FileReader::tell() const {
  // Modulo 2^32: after a seek `block_` can be a large byte offset.
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(blockSize_) *
                                       static_cast<std::uint32_t>(block_) +
                                   static_cast<std::uint32_t>(cursor_));
}

/// Shows the next block; false when that brings no further byte.
bool FileReader::refill() {
  if (atEnd_) return false;
  if (!showBlock(nextOffset_)) enterBlock(nextOffset_, 0);
  block_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(block_) + 1);  // modulo 2^32
  return end_ > 0;
}

/// Bytes that can be taken at once, one behind the other in the window: the unread ones of the
/// block in view and those of the whole blocks behind it. 0 when the block is used up.
std::int64_t FileReader::unreadInWindow() const {
  if (isExhausted() || !is_open()) return unreadCount();
  const std::int64_t behind = windowOffset_ + windowBytes_ - nextOffset_;
  return unreadCount() + behind / blockSize_ * blockSize_;
}

/// Moves past `count` of the bytes that unreadInWindow() counts. The block of the last of them is
/// in view afterwards, as if one block had been shown after the other.
void FileReader::pass(std::int64_t count) {
  const std::int64_t taken = cursor_ + count;
  const std::int64_t refills = (taken - 1) / blockSize_;
  if (refills > 0) {
    enterBlock(nextOffset_ + (refills - 1) * blockSize_, blockSize_);
    block_ = static_cast<std::int32_t>(block_ + refills);  // modulo 2^32
  }
  cursor_ = static_cast<std::int32_t>(taken - refills * blockSize_);  // fits: inside the block
}

/// Shows the block at `offset`; false, with everything as it was, when the file can not be read
/// there. A block behind the end of the file is an empty one.
bool FileReader::showBlock(std::int64_t offset) {
  if (!is_open()) return false;
  const std::int64_t wantedEnd = std::min(offset + blockSize_, fileSize_);
  const bool inWindow = offset >= windowOffset_ && wantedEnd <= windowOffset_ + windowBytes_;
  if (offset < wantedEnd && !inWindow && !loadWindow(offset)) return false;

  // The window may have ended early: the file has become shorter, or can not be read on.
  const std::int64_t blockEnd = std::min(wantedEnd, windowOffset_ + windowBytes_);
  enterBlock(offset, static_cast<std::int32_t>(std::max<std::int64_t>(blockEnd - offset, 0)));
  return true;
}

/// Reads the window in which the block at `offset` lies, or as much of it as the file has.
bool FileReader::loadWindow(std::int64_t offset) {
  const std::int64_t blockBytes = std::min<std::int64_t>(blockSize_, fileSize_ - offset);
  if (isDamaged_) return readWindow(offset, blockBytes);

  const bool whole = fileSize_ <= wholeFileLimit;
  const std::int64_t start = whole ? 0 : offset / windowStep * windowStep;
  const std::int64_t wanted = whole ? fileSize_  // else: room for a block that starts in the window
                                    : std::min(windowStep + blockSize_, fileSize_ - start);
  if (!readWindow(start, wanted)) return false;
  // An error anywhere in a window loses all of it, since the library does not tell how far it came.
  // Blocks without an error of their own must not go with it: each is a window from here on.
  if (isDamaged_) readWindow(offset, blockBytes);
  return true;
}

/// Makes `wanted` bytes from `start` on the window, or as many as can be read. False, with the
/// window as it was, when there is no memory or no such place.
bool FileReader::readWindow(std::int64_t start, std::int64_t wanted) {
  std::unique_ptr<char[]> room;
  if (wanted > bufferSize_) {
    room.reset(new (std::nothrow) char[static_cast<std::size_t>(wanted)]);
    if (!room) return false;
  }
  // After an error nobody knows where the stream stands.
  const bool standsThere = start == windowOffset_ + windowBytes_ && !isDamaged_;
  if (!standsThere && !seekg(start)) {
    clear();
    return false;
  }
  if (room) {
    buffer_ = std::move(room);
    bufferSize_ = wanted;
  }
  read(buffer_.get(), wanted);
  windowOffset_ = start;
  windowBytes_ = gcount();
  if (bad()) {
    isDamaged_ = true;
  } else if (windowBytes_ < wanted) {
    fileSize_ = start + windowBytes_;
  }
  clear();
  return true;
}

void FileReader::enterBlock(std::int64_t offset, std::int32_t byteCount) {
  blockStart_ = byteCount > 0 ? buffer_.get() + (offset - windowOffset_) : nullptr;
  cursor_ = 0;
  end_ = byteCount;
  blockBytes_ = byteCount;
  atEnd_ = byteCount < blockSize_ || blockSize_ == 0;
  nextOffset_ = offset + byteCount;
}

void FileReader::forgetFile() {
  setBufferSize(blockSize_);
  isDamaged_ = false;
  block_ = blockBytes_ = lineCount_ = 0;
  nextOffset_ = fileSize_ = windowOffset_ = 0;
}

}  // namespace Tessaly
