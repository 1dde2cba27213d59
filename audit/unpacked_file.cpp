#include "audit/unpacked_file.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "audit/descriptor.h"
#include "audit/gzip_members.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): not every libc declares it

namespace Quillet {

namespace {

constexpr std::size_t chunkSize = 1 << 18;        // bytes read at a time
constexpr std::int64_t memoryLimit = 64LL << 20;  // bytes; longer content goes to a file

[[noreturn]] void fail(const char* what) {
  throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

/// Takes the unpacked bytes: in memory as long as there are few.
class Content {
 public:
  Content() : descriptor_(::memfd_create("quillet", MFD_CLOEXEC)) {
    if (!descriptor_.isOpen()) fail("can not make a file in memory");
  }

  void append(const unsigned char* bytes, std::size_t count) {
    if (inMemory_ && size_ + static_cast<std::int64_t>(count) > memoryLimit) moveToFile();
    if (!writeAll(descriptor_.number(), {reinterpret_cast<const char*>(bytes), count})) {
      fail("can not write to a temporary file");
    }
    size_ += static_cast<std::int64_t>(count);
  }

  void clear() {
    size_ = 0;
    if (::ftruncate(descriptor_.number(), 0) != 0 ||
        ::lseek(descriptor_.number(), 0, SEEK_SET) != 0) {
      fail("can not empty a temporary file");
    }
  }

  int release() { return descriptor_.release(); }

 private:
  void moveToFile() {
    const Descriptor memory(descriptor_.release());
    descriptor_.reset(openUnnamedFile(temporaryFolder()));
    if (!descriptor_.isOpen()) fail("can not make a temporary file");
    for (off_t offset = 0; offset < size_;) {
      const auto rest = static_cast<std::size_t>(size_ - offset);
      if (::sendfile(descriptor_.number(), memory.number(), &offset, rest) <= 0) {
        fail("can not write to a temporary file");
      }
    }
    inMemory_ = false;
  }

  Descriptor descriptor_;
  std::int64_t size_ = 0;
  bool inMemory_ = true;
};

/// Starts `gunzip -c -f` without a shell. Its complaints are dropped.
pid_t startGunzip(int input, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_init(&attributes);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // Should reading end early, the broken pipe ends gunzip, even where this program ignores it.
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

  char program[] = "gunzip";
  char toOutput[] = "-c";
  char evenIfPlain[] = "-f";
  char* const arguments[] = {program, toOutput, evenIfPlain, nullptr};
  pid_t child = 0;
  const int error = ::posix_spawnp(&child, program, &actions, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    errno = error;
    fail("can not start gunzip");
  }
  return child;
}

/// gunzip at work on a file that is open as `input`, from where that stands.
class Gunzip {
 public:
  explicit Gunzip(int input) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) fail("can not make a pipe");
    output_.reset(ends[0]);
    const Descriptor writeEnd(ends[1]);
    id_ = startGunzip(input, writeEnd.number());
  }
  /// Waits, once nobody reads the output any longer.
  ~Gunzip() {
    output_.close();
    while (::waitpid(id_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  Gunzip(const Gunzip&) = delete;
  Gunzip& operator=(const Gunzip&) = delete;

  int output() const { return output_.number(); }

 private:
  Descriptor output_;
  pid_t id_ = 0;
};

/// What gunzip makes of the file, from its start.
void passThroughGunzip(int from, Content& to) {
  ::lseek(from, 0, SEEK_SET);
  const auto buffer = std::make_unique_for_overwrite<unsigned char[]>(chunkSize);
  const Gunzip gunzip(from);
  for (;;) {
    const ssize_t got = readSome(gunzip.output(), buffer.get(), chunkSize);
    if (got <= 0) return;
    to.append(buffer.get(), static_cast<std::size_t>(got));
  }
}

}  // namespace

UnpackedFile::UnpackedFile(const std::string& path) {
  Content content;
  // Not to wait for the writer of a pipe.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status;
  if (file.isOpen() && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode)) {
    constexpr unsigned char magic[] = {0x1F, 0x8B};
    unsigned char start[sizeof magic] = {};
    isGzip_ = readSomeAt(file.number(), start, sizeof start, 0) == sizeof start &&
              std::memcmp(start, magic, sizeof magic) == 0;

    const auto keep = [&content](const unsigned char* bytes, std::size_t count) {
      content.append(bytes, count);
      return true;
    };
    isIntact_ = isGzip_ && unpackMembers(file.number(), keep) == GzipContent::intact;
    if (!isIntact_) {
      content.clear();
      passThroughGunzip(file.number(), content);
    }
  }
  descriptor_.reset(content.release());
  path_ = "/proc/self/fd/" + std::to_string(descriptor_.number());
}

}  // namespace Quillet
