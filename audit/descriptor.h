#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>

// Files as the system numbers them. Errors are in errno.
namespace Quillet {

/// A file descriptor that is closed with its owner; a negative one is none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  /// Gives it away.
  int release() { return std::exchange(number_, -1); }
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

/// Everything in a file, from its start to where it can be read.
std::string contentOf(int descriptor);

/// Writes all bytes; false after an error.
bool writeAll(int descriptor, std::string_view bytes);

/// A new file without a name in the folder, to write and to read, that no other user may read.
/// Negative after an error.
int openUnnamedFile(const std::string& folder);

}  // namespace Quillet
