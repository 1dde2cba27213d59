#include "report/spool.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace Quillet {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 16;

/// -1 and the system's error number when there can be none.
int openUnnamedFile(const std::string& folder) {
  const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (descriptor >= 0) return descriptor;
  // Not every file system has files without a name.
  std::string name = folder + "/.quillet-report-XXXXXX";
  const int named = mkostemp(name.data(), O_CLOEXEC);
  if (named >= 0) unlink(name.c_str());
  return named;
}

}  // namespace

Spool::Spool(const std::string& folder)
    : folder_(folder.empty() ? "." : folder), descriptor_(openUnnamedFile(folder_)) {
  if (descriptor_ < 0) fail("make");
  buffer_.reserve(bufferSize);
}

Spool::~Spool() { close(descriptor_); }

void Spool::write(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > bufferSize) flush();
  buffer_ += bytes;
}

void Spool::flush() {
  for (std::string_view rest = buffer_; !rest.empty();) {
    const ssize_t count = ::write(descriptor_, rest.data(), rest.size());
    if (count >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      fail("write");
    }
  }
  buffer_.clear();
}

void Spool::read(const std::function<void(std::string_view)>& take) {
  flush();
  if (lseek(descriptor_, 0, SEEK_SET) != 0) fail("read");
  buffer_.resize(bufferSize);
  for (;;) {
    const ssize_t count = ::read(descriptor_, buffer_.data(), buffer_.size());
    if (count == 0) return;
    if (count > 0) {
      take(std::string_view(buffer_).substr(0, static_cast<std::size_t>(count)));
    } else if (errno != EINTR) {
      fail("read");
    }
  }
}

void Spool::fail(const char* what) const {
  throw std::runtime_error("can not " + std::string(what) + " a temporary file in " + folder_ +
                           ": " + std::strerror(errno));
}

}  // namespace Quillet
