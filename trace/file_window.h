#pragma once

#include <cstdint>
#include <memory>

namespace Tessaly {

/// A regular file that is open for reading, with a stretch of its bytes in memory.
///
/// FileReader asks it for one block after another. The stretch is longer than a block, so that a
/// file of ordinary size costs one system read. Offsets and sizes are bytes. It can be moved, not
/// copied; what it was moved from has no file and no bytes. Errors are false results; nothing is
/// printed or thrown.
class FileWindow {
 public:
  /// No file.
  FileWindow() = default;
  /// Opens a regular file; isOpen() tells whether that succeeded.
  explicit FileWindow(const char* path);
  FileWindow(FileWindow&& other) noexcept;
  FileWindow& operator=(FileWindow&& other) noexcept;
  ~FileWindow();

  bool isOpen() const { return descriptor_ >= 0; }
  /// Closes the file and keeps the bytes. False when no file is open.
  bool close();

  /// Size of the file when it was opened, or less once a read has found an earlier end. The first
  /// show() replaces a size of 0: files that the kernel generates, as in /proc, have that size but
  /// are not empty.
  std::int64_t size() const { return size_; }

  /// Brings `count` bytes from `offset` on into memory, or as many as the file has there. After a
  /// read error none of them is in memory. False, with the bytes unchanged, without an open file or
  /// when memory is out.
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
  std::int64_t size_ = 0;          // bytes in the file, see size()
  bool isSizeDoubted_ = false;     // the system gave 0, and nothing has been read yet
  bool isDamaged_ = false;         // a read has failed: from now on only what is asked for is read
  std::unique_ptr<char[]> bytes_;  // null before the first read
  std::int64_t room_ = 0;          // bytes allocated
  std::int64_t offset_ = 0;        // of the first byte in memory
  std::int64_t count_ = 0;         // bytes in memory
};

}  // namespace Tessaly
