#include "output/file_writer.h"

#include <algorithm>

#include "foundation/directory.h"

// Opening, closing, and the rules of the buffer.

namespace Tessaly {

namespace {

// A value passes three buffers on its way to the file. Each saves CPU of a whole run:
// - The writers of many lines compose 32 lines at a time (text_lines.h), without a call of this
//   class for each of them. Line by line costs 6 % more.
// - The buffer of this class holds the pending bytes and is flushed when it is full.
// - The buffer of the stream gathers what is flushed. Most result files fit into it, so that each
//   costs one system write. The library's default of 8 KiB costs 5 % more.
constexpr std::streamsize streamBufferSize = 1 << 16;  // bytes

}  // namespace

FileWriter::FileWriter() : FileWriter(defaultBufferSize) {}

FileWriter::FileWriter(std::int32_t size) { setBufferSize(size); }

FileWriter::~FileWriter() { stream_.rdbuf()->close(); }  // before its buffer is freed

void FileWriter::setBufferSize(std::int32_t size) {
  const std::int32_t newSize = std::max(size, 0);
  // Zero-filled, because trimTrailingSpace() may read bytes that were never written. The other
  // members are set after the allocation, so that they still describe the old buffer when it
  // throws.
  bufferStart_ =
      newSize == 0 ? nullptr : std::make_unique<char[]>(static_cast<std::size_t>(newSize));
  bufferSize_ = newSize;
  bufferPos_ = bufferStart_.get();
  bufferEnd_ = bufferStart_.get() + bufferSize_;
}

/// Opens the file in the stream; false when this or anything earlier failed.
bool FileWriter::openFile(const char* path, std::ios_base::openmode mode) {
  bufferPos_ = bufferStart_.get();
  std::filebuf* const file = stream_.rdbuf();
  if (!file->is_open()) {
    if (streamBuffer_ == nullptr) {
      streamBuffer_ = std::make_unique_for_overwrite<char[]>(streamBufferSize);
    } else {
      // With libc++, a closed file buffer ignores new memory and writes byte by byte, so each file
      // gets a new one. The state of the stream does not change.
      *file = std::filebuf();
    }
    file->pubsetbuf(streamBuffer_.get(), streamBufferSize);
  }
  // Deliberate: the state is not cleared (std::ofstream::open would), so one failure stays.
  if (file->open(path, mode) == nullptr) stream_.setstate(std::ios_base::failbit);
  return !stream_.fail();  // fail() looks at the fail and the bad bit
}

bool FileWriter::open(const String& path) {
  return openFile(path.text(), std::ios_base::out | std::ios_base::trunc);
}

bool FileWriter::open(const char* path) {
  return openFile(path, std::ios_base::out | std::ios_base::trunc);
}

bool FileWriter::openAppend(const String& path) {
  return openFile(path.text(), std::ios_base::out | std::ios_base::app);
}

bool FileWriter::openAppend(const char* path) {
  return openFile(path, std::ios_base::out | std::ios_base::app);
}

void FileWriter::close() {
  // `bufferPos_` stays: open() resets it.
  if (bufferPos_ != bufferStart_.get()) {
    stream_.write(bufferStart_.get(), bufferPos_ - bufferStart_.get());
  }
  if (stream_.rdbuf()->close() == nullptr) stream_.setstate(std::ios_base::failbit);
}

bool FileWriter::exists(const String& path) { return FileWriter::exists(path.text()); }

bool FileWriter::exists(const char* path) { return Directory::exists(path); }

/// Passes the whole buffer to the stream and empties it.
void FileWriter::flush() {
  // In two halves: libstdc++ passes 1024 bytes or more directly to the system, and gathers shorter
  // writes in the stream's buffer. The default buffer in one piece costs 26 % more CPU.
  const std::int32_t half = bufferSize_ / 2;
  stream_.write(bufferStart_.get(), half);
  stream_.write(bufferStart_.get() + half, bufferSize_ - half);
  bufferPos_ = bufferStart_.get();
}

/// Fills the buffer with bytes from `bytes`, flushes it, and returns how many it took.
std::size_t FileWriter::fillUpAndFlush(const char* bytes) {
  const std::size_t count = room();
  std::memcpy(bufferPos_, bytes, count);
  flush();
  return count;
}

/// Copies the bytes to the buffer and flushes it whenever it is full, also after the last byte.
void FileWriter::placeInBlocks(const char* bytes, std::size_t count) {
  if (bufferSize_ == 0) return;

  while (room() <= count) {  // "or equal": a buffer that is just full is flushed at once
    const std::size_t copied = fillUpAndFlush(bytes);
    bytes += copied;
    count -= copied;
  }
  std::memcpy(bufferPos_, bytes, count);
  bufferPos_ += count;
}

/// Like placeInBlocks(), for `count` times the same character.
void FileWriter::placeRepeated(char character, std::size_t count) {
  if (bufferSize_ == 0) return;

  while (room() <= count) {
    count -= room();
    std::memset(bufferPos_, character, room());
    flush();
  }
  std::memset(bufferPos_, character, count);
  bufferPos_ += count;
}

/// Like placeInBlocks(), but the last byte may leave the buffer full.
void FileWriter::storeInBlocks(const char* bytes, std::size_t count) {
  if (bufferSize_ == 0) return;

  while (room() < count) {  // not "or equal": the last bytes may leave the buffer full
    const std::size_t copied = fillUpAndFlush(bytes);
    bytes += copied;
    count -= copied;
  }
  std::memcpy(bufferPos_, bytes, count);
  bufferPos_ += count;
}

void FileWriter::trimTrailingSpace() {
  if (bufferPos_ == bufferStart_.get()) return;

  do {
    --bufferPos_;
  } while (bufferPos_ > bufferStart_.get() && isWhiteSpace(*bufferPos_));
  ++bufferPos_;

  // Deliberate: the search for a line feed does not stop where the pending bytes ended. Without one
  // in the white space it goes on over stale bytes, perhaps to the end of the buffer.
  while (bufferPos_ < bufferEnd_ && *bufferPos_++ != '\n') {
  }
}

}  // namespace Tessaly
