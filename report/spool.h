#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "audit/descriptor.h"

namespace Quillet {

/// Bytes that wait on the disk, in a file without a name that no other user may read. It goes with
/// the object, or with the program however that ends.
///
/// Errors: every operation throws std::runtime_error with a text that names the folder.
/// Use: construct, write(), read() once.
class Spool {
 public:
  explicit Spool(const std::string& folder);

  void write(std::string_view bytes);
  /// Hands over everything that was written, in pieces.
  void read(const std::function<void(std::string_view)>& take);

 private:
  void flush();
  [[noreturn]] void fail(const char* what) const;

  std::string folder_;
  std::string buffer_;
  Descriptor descriptor_;
};

}  // namespace Quillet
