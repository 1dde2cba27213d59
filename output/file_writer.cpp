#include "output/file_writer.h"

#include <algorithm>

#include "foundation/directory.h"

// Opening, closing, and the rules of the buffer.

namespace Tessaly {

namespace {

// Bytes; few result files have more. The library's own choice of 8 KiB makes many system writes.
constexpr std::streamsize streamBufferSize = 1 << 16;

}  // namespace

FileWriter::FileWriter() : FileWriter(defaultBufferSize) {}

FileWriter::FileWriter(std::int32_t size) { setBufferSize(size); }

FileWriter::~FileWriter() { stream.rdbuf()->close(); }  // while its buffer is still there

void FileWriter::setBufferSize(std::int32_t size) {
  const std::int32_t newSize = std::max(size, 0);
  // Zero-filled, because trimTrailingSpace() may read bytes that no write has reached yet. The
  // fields follow the allocation, so that they still describe the old buffer when it throws.
  bufferStart =
      newSize == 0 ? nullptr : std::make_unique<char[]>(static_cast<std::size_t>(newSize));
  bufferSize = newSize;
  bufferPos = bufferStart.get();
  bufferEnd = bufferStart.get() + bufferSize;
}

bool FileWriter::openFile(const char* path, std::ios_base::openmode mode) {
  bufferPos = bufferStart.get();
  if (streamBuffer == nullptr) {
    streamBuffer = std::make_unique_for_overwrite<char[]>(streamBufferSize);
    stream.rdbuf()->pubsetbuf(streamBuffer.get(), streamBufferSize);
  }
  // Deliberate: the state is not cleared (std::ofstream::open would), so one failure stays.
  if (stream.rdbuf()->open(path, mode) == nullptr) stream.setstate(std::ios_base::failbit);
  return !stream.fail();  // fail() looks at the fail and the bad bit
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
  // `bufferPos` stays: open() resets it.
  if (bufferPos != bufferStart.get()) {
    stream.write(bufferStart.get(), bufferPos - bufferStart.get());
  }
  if (stream.rdbuf()->close() == nullptr) stream.setstate(std::ios_base::failbit);
}

bool FileWriter::exists(const String& path) { return FileWriter::exists(path.text()); }

bool FileWriter::exists(const char* path) { return Directory::exists(path); }

void FileWriter::flush() {
  // In two halves: libstdc++ passes a run of 1024 bytes or more to the system at once, but gathers
  // shorter ones in the stream's buffer, so that the system is called once in 64 KiB, not in 1.
  const std::int32_t half = bufferSize / 2;
  stream.write(bufferStart.get(), half);
  stream.write(bufferStart.get() + half, bufferSize - half);
  bufferPos = bufferStart.get();
}

/// Copies as many bytes as there is room for, flushes, and returns their number.
std::size_t FileWriter::fillUpAndFlush(const char* bytes) {
  const std::size_t count = room();
  std::memcpy(bufferPos, bytes, count);
  flush();
  return count;
}

void FileWriter::placeInBlocks(const char* bytes, std::size_t count) {
  if (bufferSize == 0) return;

  while (room() <= count) {  // "or equal": a buffer that is exactly filled is flushed at once
    const std::size_t copied = fillUpAndFlush(bytes);
    bytes += copied;
    count -= copied;
  }
  std::memcpy(bufferPos, bytes, count);
  bufferPos += count;
}

void FileWriter::placeRepeated(char character, std::size_t count) {
  if (bufferSize == 0) return;

  while (room() <= count) {
    count -= room();
    std::memset(bufferPos, character, room());
    flush();
  }
  std::memset(bufferPos, character, count);
  bufferPos += count;
}

void FileWriter::storeInBlocks(const char* bytes, std::size_t count) {
  if (bufferSize == 0) return;

  while (room() < count) {  // not "or equal": the last bytes may leave the buffer full
    const std::size_t copied = fillUpAndFlush(bytes);
    bytes += copied;
    count -= copied;
  }
  std::memcpy(bufferPos, bytes, count);
  bufferPos += count;
}

void FileWriter::trimTrailingSpace() {
  if (bufferPos == bufferStart.get()) return;

  do {
    --bufferPos;
  } while (bufferPos > bufferStart.get() && isWhiteSpace(*bufferPos));
  ++bufferPos;

  // Deliberate: the search for a line feed is not bounded by the bytes that were pending. When the
  // white space held none, it runs on over stale bytes, to the end of the buffer if need be.
  while (bufferPos < bufferEnd && *bufferPos++ != '\n') {
  }
}

}  // namespace Tessaly
