#include "audit/descriptor.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace Quillet {

namespace {

/// Repeats the call while a signal interrupts it.
template <typename Call>
ssize_t uninterrupted(Call call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

}  // namespace

void Descriptor::reset(int number) {
  close();
  number_ = number;
}

bool Descriptor::close() {
  const int number = release();
  return number < 0 || ::close(number) == 0;
}

ssize_t readSome(int descriptor, void* bytes, std::size_t count) {
  return uninterrupted([&] { return ::read(descriptor, bytes, count); });
}

ssize_t readSomeAt(int descriptor, void* bytes, std::size_t count, off_t offset) {
  return uninterrupted([&] { return ::pread(descriptor, bytes, count, offset); });
}

std::string contentOf(int descriptor) {
  std::string content;
  std::array<char, std::size_t{1} << 14> buffer;
  for (;;) {
    const auto offset = static_cast<off_t>(content.size());
    const ssize_t count = readSomeAt(descriptor, buffer.data(), buffer.size(), offset);
    if (count <= 0) return content;
    content.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count =
        uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
    if (count == 0) errno = EIO;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

std::string temporaryFolder() {
  const char* const chosen = std::getenv("TMPDIR");
  return chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
}

int openUnnamedFile(const std::string& folder) {
  const int unnamed = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (unnamed >= 0) return unnamed;
  // Not every file system has files without a name.
  std::string name = folder + "/.quillet-XXXXXX";
  const int named = ::mkostemp(name.data(), O_CLOEXEC);
  if (named >= 0) ::unlink(name.c_str());
  return named;
}

}  // namespace Quillet
