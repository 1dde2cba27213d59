#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>

// File descriptors: owning, reading, writing. Errors are in errno.
namespace Quillet {

/// A file descriptor that is closed with its owner; a negative one is none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  /// Gives it away.
  int release() { return std::exchange(number_, -1); }
  /// Closes it and takes another one.
  void reset(int number);
  /// False when that fails: some file systems find a full disk only now.
  bool close();

 private:
  int number_;
};

/// Reads up to `count` bytes, whatever signals come. Returns how many; 0 at the end, negative after
/// an error.
ssize_t readSome(int descriptor, void* bytes, std::size_t count);

/// The same from `offset`; where the descriptor stands does not matter.
ssize_t readSomeAt(int descriptor, void* bytes, std::size_t count, off_t offset);

/// Everything in a file that can seek, from its start; an error ends it as the end of the file
/// does.
std::string contentOf(int descriptor);

/// Writes all bytes; false after an error.
bool writeAll(int descriptor, std::string_view bytes);

/// Where temporary files lie: $TMPDIR, or /tmp.
std::string temporaryFolder();

/// A new file without a name in the folder, to write and to read, that no other user may read.
/// Negative after an error.
int openUnnamedFile(const std::string& folder);

}  // namespace Quillet
