#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string_view>

#include "foundation/string.h"

namespace Tessaly {

class FileWindow;

/// A file read through blocks: bytes, big-endian numbers, texts and lines, at the current position
/// or at an absolute one.
///
/// Positions are byte offsets from the start of the file. Owns the file and a stretch of its bytes.
/// Errors: a false result or a short count; nothing is printed, and nothing is thrown but what a
/// String throws when memory is out.
/// Use: construct, open, read, close or destroy. The inherited stream is never opened. It lends the
/// reader its state, which stays good through all reading; nothing can be read through it.
class FileReader : public std::ifstream {
 public:
  static constexpr std::int32_t defaultBlockSize = 1024;  // bytes

  FileReader();
  /// A negative block size is taken as 0. A reader with a block size of 0 finds nothing in any
  /// file.
  explicit FileReader(std::int32_t blockSize);
  FileReader(const FileReader&) = delete;
  FileReader& operator=(const FileReader&) = delete;
  ~FileReader() override;

  /// Takes effect with the next block that is read; bytes of the present block are given up.
  void setBufferSize(std::int32_t blockSize);

  /// Shows the first block. Closes a file that is still open, and refuses what is no regular file.
  /// After a failure the reader holds no file. The stream state is clear either way.
  bool open(const String& path);
  bool open(const char* path);
  /// Whether a file is open for reading: not the inherited stream, which never is.
  bool is_open() const;
  /// The block in view can still be read. Without an open file the stream state is a failed one.
  void close();
  /// Whether the file system has an entry of any kind under the path.
  static bool exists(const String& path);
  static bool exists(const char* path);

  /// False for a negative position; one after the end of the file is a move like any other.
  bool seek(std::int32_t position);
  /// Block size times `block` plus the place in the block: see seek() for when it is no position.
  std::int32_t tell() const;

  /// Bytes of the open file: as many as it had when it was opened, or up to where reading has found
  /// its end since; 0 without an open file. Of a file whose size the system gives as 0, as it does
  /// for files that the kernel makes up while they are read, up to 1 MiB is looked for.
  std::int64_t fileSize() const;
  std::int32_t blockSize() const { return blockSize_; }
  std::int32_t block() const { return block_; }
  std::int32_t blockBytes() const { return blockBytes_; }
  /// Line feeds passed over by the line and white-space operations since the file was opened.
  std::int32_t lineCount() const { return lineCount_; }
  /// Whether the last block is in view. A block in which the file can not be read is an empty one,
  /// and counts as the last; a move leads out of it.
  bool atEnd() const { return atEnd_; }
  /// Whether the last block is used up. A reader with a block size of 0 has always ended.
  bool hasEnded() const { return isExhausted() && (atEnd_ || blockSize_ == 0); }

  // Single values. Integers are stored most significant byte first on every host, floating values
  // in the byte order of the host. False, with the value as it was, when the file can not complete
  // it: then its bytes stay unread when the last block is in view, and are used up otherwise. The
  // positioned forms are also false when the move fails.
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

  // Runs: the result is the number of values that were stored, each of them complete. A count of 0
  // or less reads nothing.
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

  /// `length` characters, zero bytes included, or as many as there are. False, with the text as it
  /// was, once the last block is used up.
  bool readText(String& text, std::int32_t length);
  /// Like readText() at a position. False, without moving, once the last block is used up; a
  /// negative position gives an empty text and true.
  bool readTextAt(std::int32_t position, String& text, std::int32_t length);
  /// Up to the next line feed, which is taken, counted and not stored. False, with the text as it
  /// was, once the last block is used up.
  bool readLine(String& line);
  bool readLineAt(std::int32_t position, String& line);
  /// Passes over lines up to the first that begins with `label`; `rest` becomes what follows it on
  /// that line. Counts every line feed. False, with `rest` as it was, when no line does; none but
  /// the label's line is kept in memory. `label` holds no line feed.
  bool readLineAfter(std::string_view label, String& rest);
  /// Like readLine() with another delimiter; line feeds are not counted.
  bool readUntil(String& text, char delimiter);
  /// Passes over everything up to and including the delimiter; false when the file has no more.
  bool skipUntil(char delimiter);
  /// Passes over white space and counts its line feeds; false when nothing else was left.
  bool skipWhiteSpace();
  /// The next run of characters without white space; the white space after it stays unread. False,
  /// with the text as it was, when there is no further word.
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
                                        // can put it after `end_`
  std::int32_t end_ = 0;                // one past the last valid byte of the block
  std::int32_t blockSize_;              // bytes
  std::int32_t block_ = 0;              // number of the block in view, but see seek()
  std::int32_t blockBytes_ = 0;         // bytes that the last block delivered
  std::int32_t lineCount_ = 0;
  bool atEnd_ = false;  // the last block was short: there is no further refill

  const char* blockStart_ = nullptr;  // first byte of the block in view
  std::int64_t nextOffset_ = 0;       // file offset at which the next refill reads
};

}  // namespace Tessaly
