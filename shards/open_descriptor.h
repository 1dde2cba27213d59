#pragma once

#include <unistd.h>

namespace Quillet {

/// A file descriptor that is closed with the object; a negative one is none.
class OpenDescriptor {
 public:
  explicit OpenDescriptor(int number) : number_(number) {}
  ~OpenDescriptor() {
    if (number_ >= 0) ::close(number_);
  }
  OpenDescriptor(const OpenDescriptor&) = delete;
  OpenDescriptor& operator=(const OpenDescriptor&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

}  // namespace Quillet
