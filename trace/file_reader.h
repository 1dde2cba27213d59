#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string_view>

#include "foundation/string.h"

namespace Tessaly {

class FileWindow;

/// Reads a file block by block: bytes, big-endian numbers, texts, lines and words, at the current
/// position or at a given one.
///
/// Call open() before any read. Positions are byte offsets from the start of the file. Errors are
/// false results or short counts. Nothing is printed. Nothing is thrown, except by a String when
/// memory is out.
/// The inherited stream is never opened, so nothing can be read through it. It only holds the error
/// state, which reads do not change.
class FileReader : public std::ifstream {
 public:
  static constexpr std::int32_t defaultBlockSize = 1024;  // bytes

  FileReader();
  /// The block size is in bytes; a negative one is taken as 0. With a block size of 0 every file
  /// reads as empty.
  explicit FileReader(std::int32_t blockSize);
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;
  ~FileReader() override;

  /// Drops the bytes of the current block. The next block that is read has the new size.
  void setBufferSize(std::int32_t blockSize);

  /// Opens the file and reads its first block, after closing a file that is still open. False, with
  /// no file open, for anything but a regular file that can be opened. Clears the stream state in
  /// any case.
  bool open(const String& path);
  bool open(const char* path);
  /// Whether this reader has an open file; the inherited stream never has.
  bool is_open() const;
  /// Closes the file. The current block can still be read. Without an open file it sets the fail
  /// bit of the stream.
  void close();
  /// Whether the file system has an entry of any kind under the path.
  static bool exists(const String& path);
  static bool exists(const char* path);

  /// Moves to a position, which may lie after the end of the file. False for a negative position,
  /// with a block size of 0, and for another block without an open file.
  /// Deliberate: a seek to another block sets block() to the byte offset of that block.
  bool seek(std::int32_t position);
  /// blockSize() * block() + the place in the block, modulo 2^32. It is no file position after a
  /// seek that set block() to a byte offset.
  std::int32_t tell() const;

  /// Bytes in the open file: its size when it was opened, or less once a read has found an earlier
  /// end. 0 without an open file. Of a file that the system gives a size of 0, up to 1 MiB is read:
  /// files that the kernel generates, as in /proc, have that size.
  std::int64_t fileSize() const;
  std::int32_t blockSize() const { return blockSize_; }
  std::int32_t block() const { return block_; }
  std::int32_t blockBytes() const { return blockBytes_; }
  /// Line feeds that the line, word and white-space operations have passed since open().
  std::int32_t lineCount() const { return lineCount_; }
  /// Whether the current block is the last one. A block that can not be read is empty and counts as
  /// the last; seek() can leave it.
  bool atEnd() const { return atEnd_; }
  /// Whether the last block is used up; always true with a block size of 0.
  bool hasEnded() const { return isExhausted() && (atEnd_ || blockSize_ == 0); }

  // Single values. Integers are big-endian in the file; floating values have the byte order of the
  // host. False, with the value unchanged, when the file ends before or inside it. In the last
  // block the bytes of an incomplete value stay unread; otherwise they are used up. The positioned
  // forms are also false when seek() is.
  bool readInt8(std::int8_t& value);
  bool readUInt8(std::uint8_t& value);
  bool readInt16(std::int16_t& value);
  bool readUInt16(std::uint16_t& value);
  bool readInt32(std::int32_t& value);
  bool readUInt32(std::uint32_t& value);
  bool readFloat(float& value);
  bool readDouble(double& value);
  bool readInt8At(std::int32_t position, std::int8_t& value);
  bool readUInt8At(std::int32_t position, std::uint8_t& value);
  bool readInt16At(std::int32_t position, std::int16_t& value);
  bool readUInt16At(std::int32_t position, std::uint16_t& value);
  bool readInt32At(std::int32_t position, std::int32_t& value);
  bool readUInt32At(std::int32_t position, std::uint32_t& value);
  bool readFloatAt(std::int32_t position, float& value);
  bool readDoubleAt(std::int32_t position, double& value);

  // Arrays. The result is the number of complete values that were stored. A count of 0 or less
  // reads nothing.
  std::int32_t readBytes(char* destination, std::int32_t count);
  std::int32_t readBytes(std::int8_t* destination, std::int32_t count);
  std::int32_t readBytes(std::uint8_t* destination, std::int32_t count);
  std::int32_t readBytesAt(std::int32_t position, char* destination, std::int32_t count);
  std::int32_t readBytesAt(std::int32_t position, std::int8_t* destination, std::int32_t count);
  std::int32_t readBytesAt(std::int32_t position, std::uint8_t* destination, std::int32_t count);
  std::int32_t readInt16Array(std::int16_t* destination, std::int32_t count);
  std::int32_t readUInt16Array(std::uint16_t* destination, std::int32_t count);
  std::int32_t readInt32Array(std::int32_t* destination, std::int32_t count);
  std::int32_t readUInt32Array(std::uint32_t* destination, std::int32_t count);
  std::int32_t readFloatArray(float* destination, std::int32_t count);
  std::int32_t readDoubleArray(double* destination, std::int32_t count);

  /// Reads `length` characters, or as many as there are. Zero bytes are characters too. False, with
  /// the text unchanged, when hasEnded().
  bool readText(String& text, std::int32_t length);
  /// Like readText(), at a position. When hasEnded(), it is false and does not move. A negative
  /// position gives an empty text and true.
  bool readTextAt(std::int32_t position, String& text, std::int32_t length);
  /// Reads up to the next line feed, which is consumed and counted, but not stored. False, with the
  /// text unchanged, when hasEnded().
  bool readLine(String& line);
  bool readLineAt(std::int32_t position, String& line);
  /// Skips lines until one begins with `label`, and reads the remainder of that line into `rest`.
  /// Counts every line feed. False, with `rest` unchanged, when no line begins with it. Keeps no
  /// other line in memory. `label` is not empty and holds no line feed.
  bool readLineAfter(std::string_view label, String& rest);
  /// Like readLine(), but with another delimiter; line feeds are not counted.
  bool readUntil(String& text, char delimiter);
  /// Skips everything up to and including the delimiter; false when the file ends before it.
  bool skipUntil(char delimiter);
  /// Skips white space and counts its line feeds; false when the file ends first.
  bool skipWhiteSpace();
  /// Skips white space, then reads up to the next white space, which stays unread. False, with the
  /// text unchanged, when there is no further word.
  bool readWord(String& word);

 private:
  bool isExhausted() const { return cursor_ >= end_; }
  const char* unread() const { return blockStart_ + cursor_; }
  std::int32_t unreadCount() const { return isExhausted() ? 0 : end_ - cursor_; }
  std::int64_t unreadInWindow() const;
  void pass(std::int64_t count);

  bool refill();
  bool showBlock(std::int64_t offset);
  void enterBlock(std::int64_t offset, std::int32_t byteCount);
  void countLineFeed();

  std::int32_t takeBytes(void* destination, std::int32_t count);
  bool takeWhole(void* destination, std::int32_t size);
  template <typename Value>
  bool takeValue(Value& value);
  template <typename Value>
  std::int32_t takeArray(Value* destination, std::int32_t count);
  void appendBytes(String& text, std::int32_t count);
  bool appendUntil(String& text, char delimiter);

  std::unique_ptr<FileWindow> window_;  // never null
  std::int32_t cursor_ = 0;             // next unread byte, from the start of the block; a seek
                                        // can put it past `end_`
  std::int32_t end_ = 0;                // one past the last valid byte of the block
  std::int32_t blockSize_;              // bytes
  std::int32_t block_ = 0;              // number of the current block, but see seek()
  std::int32_t blockBytes_ = 0;         // bytes in the block that was read last
  std::int32_t lineCount_ = 0;
  bool atEnd_ = false;  // the current block is short: no block follows it

  const char* blockStart_ = nullptr;  // first byte of the current block
  std::int64_t nextOffset_ = 0;       // file offset at which the next refill reads
};

}  // namespace Tessaly
