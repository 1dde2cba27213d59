#include "trace/file_reader.h"

#include <algorithm>

#include "foundation/directory.h"
#include "trace/file_window.h"

namespace Tessaly {

FileReader::FileReader() : FileReader(defaultBlockSize) {}

FileReader::FileReader(std::int32_t blockSize)
    : window_(std::make_unique<FileWindow>()), blockSize_(std::max(blockSize, 0)) {}

FileReader::~FileReader() = default;

void FileReader::setBufferSize(std::int32_t blockSize) {
  blockSize_ = std::max(blockSize, 0);
  blockStart_ = nullptr;
  cursor_ = end_ = 0;
  atEnd_ = false;
}

bool FileReader::open(const String& path) { return open(path.text()); }

bool FileReader::open(const char* path) {
  *window_ = FileWindow();  // a file that is still open is closed before the next one is opened
  *window_ = FileWindow(path);
  clear();
  setBufferSize(blockSize_);  // no block yet
  block_ = blockBytes_ = lineCount_ = 0;
  nextOffset_ = 0;
  if (!is_open()) return false;
  if (!showBlock(0)) enterBlock(0, 0);
  return true;
}

bool FileReader::is_open() const { return window_->isOpen(); }

void FileReader::close() {
  if (!window_->close()) setstate(failbit);
}

std::int64_t FileReader::fileSize() const { return is_open() ? window_->size() : 0; }

bool FileReader::exists(const String& path) { return Directory::exists(path); }

bool FileReader::exists(const char* path) { return Directory::exists(path); }

bool FileReader::seek(std::int32_t position) {
  if (position < 0 || blockSize_ == 0) return false;
  const std::int32_t blockIndex = position / blockSize_;
  if (blockIndex != block_) {
    const std::int32_t blockOffset = blockIndex * blockSize_;
    if (!showBlock(blockOffset)) return false;
    // Deliberate: this stores the byte offset of the block, but the comparison above and refill()
    // take it for a block number. So the next seek nearly always shows its block afresh. When the
    // number of that block equals the stored offset, the current block stays, although it is
    // another one. tell() gives no file position after such a seek.
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

/// Makes the next block the current one; false when there is none or it is empty.
bool FileReader::refill() {
  if (atEnd_) return false;
  if (!showBlock(nextOffset_)) enterBlock(nextOffset_, 0);
  block_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(block_) + 1);  // modulo 2^32
  return end_ > 0;
}

/// Unread bytes that lie in the window without a gap: those of the current block and of the whole
/// blocks after it. 0 when the current block is used up.
std::int64_t FileReader::unreadInWindow() const {
  if (isExhausted() || !is_open()) return unreadCount();
  return unreadCount() + window_->bytesFrom(nextOffset_) / blockSize_ * blockSize_;
}

/// Moves past `count` of the bytes that unreadInWindow() counts. The state afterwards is that of a
/// reader that took them block by block.
void FileReader::pass(std::int64_t count) {
  const std::int64_t taken = cursor_ + count;
  const std::int64_t refills = (taken - 1) / blockSize_;
  if (refills > 0) {
    enterBlock(nextOffset_ + (refills - 1) * blockSize_, blockSize_);
    block_ = static_cast<std::int32_t>(block_ + refills);  // modulo 2^32
  }
  cursor_ = static_cast<std::int32_t>(taken - refills * blockSize_);  // fits: inside the block
}

/// Makes the block at `offset` the current one; a block after the end of the file is empty. False,
/// with everything unchanged, without an open file or when memory is out.
bool FileReader::showBlock(std::int64_t offset) {
  if (!window_->show(offset, blockSize_)) return false;
  enterBlock(offset, static_cast<std::int32_t>(
                         std::min<std::int64_t>(window_->bytesFrom(offset), blockSize_)));
  return true;
}

/// Makes the `byteCount` bytes from `offset` on the current block. The window holds them.
void FileReader::enterBlock(std::int64_t offset, std::int32_t byteCount) {
  blockStart_ = byteCount > 0 ? window_->at(offset) : nullptr;
  cursor_ = 0;
  end_ = byteCount;
  blockBytes_ = byteCount;
  atEnd_ = byteCount < blockSize_ || blockSize_ == 0;
  nextOffset_ = offset + byteCount;
}

}  // namespace Tessaly
