#include "report/spool.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

namespace Quillet {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 16;

}  // namespace

Spool::Spool(const std::string& folder)
    : folder_(folder.empty() ? "." : folder), descriptor_(openUnnamedFile(folder_)) {
  if (!descriptor_.isOpen()) fail("make");
  buffer_.reserve(bufferSize);
}

void Spool::write(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > bufferSize) flush();
  buffer_ += bytes;
}

void Spool::flush() {
  if (!writeAll(descriptor_.number(), buffer_)) fail("write");
  buffer_.clear();
}

void Spool::read(const std::function<void(std::string_view)>& take) {
  flush();
  if (lseek(descriptor_.number(), 0, SEEK_SET) != 0) fail("read");
  buffer_.resize(bufferSize);
  for (;;) {
    const ssize_t count = readSome(descriptor_.number(), buffer_.data(), buffer_.size());
    if (count < 0) fail("read");
    if (count == 0) return;
    take(std::string_view(buffer_).substr(0, static_cast<std::size_t>(count)));
  }
}

void Spool::fail(const char* what) const {
  throw std::runtime_error("can not " + std::string(what) + " a temporary file in " + folder_ +
                           ": " + std::strerror(errno));
}

}  // namespace Quillet
