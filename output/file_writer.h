#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>

#include "foundation/string.h"

namespace Tessaly {

/// Writes a file: text, decimal numbers, raw bytes and big-endian binary values.
///
/// Sizes, widths and counts are bytes, those of arrays elements; a count of 0 or less writes
/// nothing. The file does not depend on the buffer size, except when that is 0 or
/// trimTrailingSpace() is used. Owns the file and the buffer.
///
/// Errors: a failed open(), write or close() makes every later open() false. Nothing is printed;
/// only a lack of memory throws.
///
/// Use: open, write, close; then open again if wanted.
class FileWriter {
 public:
  static constexpr std::int32_t defaultBufferSize = 1024;

  FileWriter();
  /// See setBufferSize().
  explicit FileWriter(std::int32_t size);

  // The order of the virtual operations is part of the class.

  /// Deliberate: closes the file without writing the pending bytes, which are lost.
  virtual ~FileWriter();

  /// Creates the file or empties an existing one; drops pending bytes. False when that fails. After
  /// any earlier failure it is false too: the file is created or emptied all the same, but nothing
  /// that is written reaches it.
  virtual bool open(const String& path);
  virtual bool open(const char* path);
  /// Like open(), but writes after the end of an existing file.
  virtual bool openAppend(const String& path);
  virtual bool openAppend(const char* path);
  /// Writes the pending bytes and closes the file. Fails when no file is open.
  virtual void close();
  /// Whether there is an entry of any kind at `path`; follows links.
  virtual bool exists(const String& path);
  virtual bool exists(const char* path);

  virtual void write(const String& text);
  virtual void write(const char* text);
  virtual void write(char character);
  virtual void write(std::int32_t value);
  virtual void write(double value);
  virtual void newline();
  // A line ends in a line feed, a word in a space.
  virtual void writeLine(const String& text);
  virtual void writeLine(const char* text);
  virtual void writeLine(char character);
  virtual void writeLine(std::int32_t value);
  virtual void writeLine(double value);
  virtual void writeWord(const String& text);
  virtual void writeWord(const char* text);
  virtual void writeWord(char character);
  virtual void writeWord(std::int32_t value);
  virtual void writeWord(double value);
  virtual void writeWithSeparator(const String& text, char separator);
  virtual void writeWithSeparator(const char* text, char separator);
  virtual void writeWithSeparator(char character, char separator);
  virtual void writeWithSeparator(std::int32_t value, char separator);
  virtual void writeWithSeparator(double value, char separator);

  virtual void writeByte(char byte);
  virtual void writeBytes(const char* data, std::int32_t count);
  virtual void writeByte(unsigned char byte);
  virtual void writeBytes(const unsigned char* data, std::int32_t count);
  // Most significant byte first.
  virtual void writeBigEndian(std::int16_t value);
  virtual void writeBigEndian(const std::int16_t* values, std::int32_t count);
  virtual void writeBigEndian(std::uint16_t value);
  virtual void writeBigEndian(const std::uint16_t* values, std::int32_t count);
  virtual void writeBigEndian(std::int32_t value);
  virtual void writeBigEndian(const std::int32_t* values, std::int32_t count);
  virtual void writeBigEndian(std::uint32_t value);
  virtual void writeBigEndian(const std::uint32_t* values, std::int32_t count);
  // The bytes as they lie in memory.
  virtual void writeNative(float value);
  virtual void writeNative(const float* values, std::int32_t count);
  virtual void writeNative(double value);
  virtual void writeNative(const double* values, std::int32_t count);
  /// The text and a zero byte.
  virtual void writeTerminated(const String& text);
  virtual void writeTerminated(const char* text);
  /// Exactly `width` bytes: a longer text is cut, a shorter one followed by spaces.
  virtual void writeField(const String& text, std::int32_t width);
  virtual void writeField(const char* text, std::int32_t width);
  /// At least `width` bytes: a longer text is never cut, a shorter one padded with spaces.
  virtual void writeAligned(const String& text, std::int32_t width, bool rightJustify);
  virtual void writeAligned(const char* text, std::int32_t width, bool rightJustify);
  virtual void writeAligned(char character, std::int32_t width, bool rightJustify);
  virtual void writeAligned(std::int32_t value, std::int32_t width, bool rightJustify);
  virtual void writeAligned(double value, std::int32_t width, bool rightJustify);

  virtual FileWriter& operator<<(const String& text);
  virtual FileWriter& operator<<(const char* text);
  virtual FileWriter& operator<<(char character);
  virtual FileWriter& operator<<(std::int32_t value);
  virtual FileWriter& operator<<(double value);

  /// Drops pending bytes; a failed stream stays failed. With a size of 0 or less every write is
  /// dropped. Numbers are written fastest to a buffer that is larger than their text. When the
  /// allocation throws, the writer is unchanged.
  void setBufferSize(std::int32_t size);
  /// Writes the character `count` times.
  void writeRepeated(char character, std::int32_t count);
  /// Shortens the white space at the end of the pending bytes so that it ends with its first line
  /// feed; blanks before that line feed stay. The first byte of the buffer is not examined and
  /// always stays. Flushed bytes can not be changed.
  /// Deliberate: when that white space has no line feed, the search goes on over stale bytes of the
  /// buffer. All bytes up to the next line feed, or up to the end of the buffer, become pending.
  void trimTrailingSpace();

 private:
  bool openFile(const char* path, std::ios_base::openmode mode);
  std::size_t room() const { return static_cast<std::size_t>(bufferEnd_ - bufferPos_); }
  void flush();
  std::size_t fillUpAndFlush(const char* bytes);

  // There are two ways into the buffer. place() never leaves it full: it flushes the moment the
  // buffer fills up. store() may leave it full; the next place() or store() then flushes first,
  // even when it adds no byte. Placed are texts, number texts, runs of raw bytes, and the
  // characters of newline(), writeLine, writeWord, writeWithSeparator and operator<<(char). Stored
  // are write(char), writeByte and the binary values.
  // Deliberate: write(char) stores, and operator<<(char) places.
  void place(const char* bytes, std::size_t count) {
    if (count < room()) {
      std::memcpy(bufferPos_, bytes, count);
      bufferPos_ += count;
    } else {
      placeInBlocks(bytes, count);
    }
  }
  void place(char byte) {
    if (room() > 1) {
      *bufferPos_++ = byte;
    } else {
      placeInBlocks(&byte, 1);
    }
  }
  void place(const String& text) { place(text.text(), static_cast<std::size_t>(text.length())); }
  void place(const char* text) { place(text, std::strlen(text)); }
  void place(std::int32_t value);
  void place(double value);
  void placeInBlocks(const char* bytes, std::size_t count);
  void placeRepeated(char character, std::size_t count);
  void placeField(const char* text, std::size_t length, std::int32_t width);
  void placeAligned(const char* text, std::size_t length, std::int32_t width, bool rightJustify);

  template <std::size_t width>
  void store(const char (&image)[width]) {
    if (room() >= width) {
      std::memcpy(bufferPos_, image, width);
      bufferPos_ += width;
    } else {
      storeInBlocks(image, width);
    }
  }
  void storeInBlocks(const char* bytes, std::size_t count);

  std::ofstream stream_;                  // its fail and bad bits are the only error state
  std::unique_ptr<char[]> bufferStart_;   // null when the size is 0
  char* bufferPos_ = nullptr;             // next free byte; those before it are pending
  char* bufferEnd_ = nullptr;             // one past the last byte of the buffer
  std::int32_t bufferSize_ = 0;           // bytes
  std::unique_ptr<char[]> streamBuffer_;  // the stream's; null before the first open
};

}  // namespace Tessaly
