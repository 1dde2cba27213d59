#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "audit/descriptor.h"

namespace Quillet {

/// A file that did not exist before; removed with the object unless finished. Every operation
/// throws std::runtime_error, with the path and the system's reason, when it fails.
class NewFile {
 public:
  explicit NewFile(const std::string& path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void write(std::string_view bytes);
  /// Writes all bytes of another file.
  void writeFrom(const std::string& path);
  /// Drops what was written.
  void clear();
  /// Bytes written.
  std::int64_t size() const { return size_; }
  /// Brings everything to the disk.
  void sync();
  /// Closes the file, which stays.
  void finish();

 private:
  std::string path_;
  Descriptor descriptor_;
  std::int64_t size_ = 0;
  bool isFinished_ = false;
};

// The same errors. With `toDisk` the bytes have reached the disk afterwards.

/// Writes a file that did not exist before.
void writeNewFile(const std::string& path, std::string_view bytes, bool toDisk = false);

/// Copies to a file that did not exist before.
void copyToNewFile(const std::string& from, const std::string& to, bool toDisk = false);

/// Renames `from` to `to`, over an old file. To another file system it copies: over `hidden`, a
/// name in the folder of `to`, and to the disk; `from` stays then. A failure leaves nothing under
/// `hidden`.
void moveFile(const std::string& from, const std::string& to, const std::string& hidden);

}  // namespace Quillet
