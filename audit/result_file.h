#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "audit/descriptor.h"

namespace Quillet {

/// A result file that is compared from its start to its end, a piece at a time: of an ordinary one
/// a single read is made, and of a very long one little is in memory.
///
/// Positions are bytes from the start of the file. Errors: a file that can not be read is not
/// readable, or ends early.
class ResultFile {
 public:
  /// Opens the file unless it is something else than a regular one.
  explicit ResultFile(const std::string& path);

  /// Whether something is there. Links are followed, as the converter does.
  bool exists() const { return exists_; }
  bool isReadable() const { return descriptor_.isOpen(); }

  std::int64_t position() const { return bufferOffset_ + static_cast<std::int64_t>(cursor_); }
  /// Passes over the next bytes as far as they equal the given ones; the number of those that do.
  std::size_t match(const char* bytes, std::size_t count);
  /// Moves to the next line feed; false when there is none.
  bool moveToLineFeed();
  bool isAtEnd();

  /// Everything from `offset` on; none when it can not be read or is longer than any result.
  std::optional<std::string> textFrom(std::int64_t offset) const;

 private:
  bool refill();

  Descriptor descriptor_;
  bool exists_ = false;
  std::int64_t size_ = 0;
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_ = 0;
  std::size_t cursor_ = 0;  // next byte of the buffer
  std::size_t end_ = 0;     // one past its last valid byte
  std::int64_t bufferOffset_ = 0;
};

}  // namespace Quillet
