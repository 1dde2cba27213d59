#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "audit/descriptor.h"

namespace Quillet {

/// A file that did not exist before; removed with the object unless finished. Every operation
/// throws std::runtime_error when it fails.
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

}  // namespace Quillet
