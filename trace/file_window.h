#pragma once

#include <cstdint>
#include <memory>

namespace Tessaly {

/// A file open for reading, and a stretch of its bytes in memory.
///
/// Offsets and sizes are bytes. A value that is moved, not copied: it owns the file and the bytes;
/// what it was moved from has neither. FileReader looks through it, and asks for one block of the
/// file after the other; the stretch is longer than a block, so that a file of ordinary size costs
/// one system read. Errors are false results; nothing is printed or thrown.
class FileWindow {
 public:
  /// No file.
  FileWindow() = default;
  /// Opens the file. isOpen() is false for what can not be opened and for what is no regular file.
  explicit FileWindow(const char* path);
  FileWindow(FileWindow&& other) noexcept;
  FileWindow& operator=(FileWindow&& other) noexcept;
  ~FileWindow();

  bool isOpen() const { return descriptor_ >= 0; }
  /// Keeps the bytes. False when no file is open.
  bool close();

  /// As many bytes as the file had when it was opened, or up to where reading has found its end
  /// since. A size of 0 is doubted, since the kernel gives it for files that it makes up while they
  /// are read: the first show() replaces it.
  std::int64_t size() const { return size_; }

  /// Brings the `count` bytes from `offset` on into memory, or those up to the end of the file.
  /// Where one of these bytes can not be read, none is there. False, with the bytes as they were,
  /// without a file or without memory.
  bool show(std::int64_t offset, std::int64_t count);

  /// Number of bytes in memory from `offset` on.
  std::int64_t bytesFrom(std::int64_t offset) const;
  /// The byte at `offset`; bytesFrom() says how many may be read there.
  const char* at(std::int64_t offset) const { return bytes_.get() + (offset - offset_); }

 private:
  bool load(std::int64_t offset, std::int64_t count);
  bool read(std::int64_t offset, std::int64_t count);
  bool makeRoom(std::int64_t count);

  int descriptor_ = -1;            // -1 without a file
  std::int64_t size_ = 0;          // bytes that reading may count on
  bool isSizeDoubted_ = false;     // it was given as 0, and nothing has been read yet
  bool isDamaged_ = false;         // reading has failed: only what is asked for is read from now on
  std::unique_ptr<char[]> bytes_;  // null before the first read
  std::int64_t room_ = 0;          // bytes that there is memory for
  std::int64_t offset_ = 0;        // of the first byte in memory
  std::int64_t count_ = 0;         // bytes in memory
};

}  // namespace Tessaly
