#include "audit/unpacked_file.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
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
#include <utility>
#include <zlib.h>

extern char** environ;  // NOLINT(readability-redundant-declaration): not every libc declares it

namespace Quillet {

namespace {

constexpr std::size_t chunkSize = 1 << 18;        // bytes read or unpacked at a time
constexpr std::int64_t memoryLimit = 64LL << 20;  // bytes; longer content goes to a file

[[noreturn]] void fail(const char* what) {
  throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
}

/// A file descriptor that is closed with its owner; -1 is none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  ~Descriptor() { reset(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }
  int release() { return std::exchange(number_, -1); }
  void reset(int number = -1) {
    if (number_ >= 0) ::close(number_);
    number_ = number;
  }

 private:
  int number_;
};

/// Up to `count` bytes; 0 at the end and where the file can not be read.
std::size_t readSome(int descriptor, void* bytes, std::size_t count) {
  ssize_t got = 0;
  do {
    got = ::read(descriptor, bytes, count);
  } while (got < 0 && errno == EINTR);
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

/// A new file without a name in $TMPDIR or /tmp.
int openUnnamedFile() {
  const char* chosen = std::getenv("TMPDIR");
  const std::string folder = chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
  const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (descriptor >= 0) return descriptor;
  // Not every file system has files without a name.
  std::string name = folder + "/quillet-XXXXXX";
  const int named = ::mkostemp(name.data(), O_CLOEXEC);
  if (named < 0) fail("can not make a temporary file");
  ::unlink(name.c_str());
  return named;
}

/// Takes the unpacked bytes: in memory as long as there are few.
class Content {
 public:
  Content() : descriptor_(::memfd_create("quillet", MFD_CLOEXEC)) {
    if (descriptor_.number() < 0) fail("can not make a file in memory");
  }

  void append(const unsigned char* bytes, std::size_t count) {
    if (inMemory_ && size_ + static_cast<std::int64_t>(count) > memoryLimit) moveToFile();
    while (count > 0) {
      const ssize_t written = ::write(descriptor_.number(), bytes, count);
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) fail("can not write to a temporary file");
      bytes += written;
      count -= static_cast<std::size_t>(written);
      size_ += written;
    }
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
    descriptor_.reset(openUnnamedFile());
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

/// zlib's state for gzip members.
class Inflation {
 public:
  Inflation() {
    constexpr int gzipOnly = 16;
    if (inflateInit2(&stream_, MAX_WBITS + gzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Inflation() { inflateEnd(&stream_); }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;

  /// Unpacks members up to the end of the file; false at the first byte that does not belong to a
  /// member, at a wrong checksum, and for a member that is cut.
  bool unpackAll(int from, Content& to, unsigned char* packed, unsigned char* unpacked) {
    bool atMemberEnd = false;
    for (;;) {
      stream_.avail_in = static_cast<unsigned>(readSome(from, packed, chunkSize));
      stream_.next_in = packed;
      if (stream_.avail_in == 0) return atMemberEnd;
      if (!unpackChunk(to, unpacked, atMemberEnd)) return false;
    }
  }

 private:
  bool unpackChunk(Content& to, unsigned char* unpacked, bool& atMemberEnd) {
    do {
      if (atMemberEnd) {
        inflateReset(&stream_);
        atMemberEnd = false;
      }
      stream_.next_out = unpacked;
      stream_.avail_out = chunkSize;
      const int status = inflate(&stream_, Z_NO_FLUSH);
      to.append(unpacked, chunkSize - stream_.avail_out);
      if (status == Z_STREAM_END) {
        atMemberEnd = true;
      } else if (status != Z_OK && status != Z_BUF_ERROR) {
        return false;  // Z_BUF_ERROR: nothing was left to do
      }
    } while (stream_.avail_in > 0 || (stream_.avail_out == 0 && !atMemberEnd));
    return true;
  }

  z_stream stream_{};
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
    output_.reset();
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
void passThroughGunzip(int from, Content& to, unsigned char* buffer) {
  ::lseek(from, 0, SEEK_SET);
  const Gunzip gunzip(from);
  while (const std::size_t got = readSome(gunzip.output(), buffer, chunkSize)) {
    to.append(buffer, got);
  }
}

}  // namespace

UnpackedFile::UnpackedFile(const std::string& path) {
  Content content;
  // Not to wait for the writer of a pipe.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status;
  if (file.number() >= 0 && ::fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode)) {
    constexpr unsigned char magic[] = {0x1F, 0x8B};
    unsigned char start[sizeof magic] = {};
    isGzip_ = ::pread(file.number(), start, sizeof start, 0) == sizeof start &&
              std::memcmp(start, magic, sizeof magic) == 0;

    const auto packed = std::make_unique_for_overwrite<unsigned char[]>(chunkSize);
    const auto unpacked = std::make_unique_for_overwrite<unsigned char[]>(chunkSize);
    isIntact_ =
        isGzip_ && Inflation().unpackAll(file.number(), content, packed.get(), unpacked.get());
    if (!isIntact_) {
      content.clear();
      passThroughGunzip(file.number(), content, unpacked.get());
    }
  }
  descriptor_ = content.release();
  path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

UnpackedFile::~UnpackedFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

}  // namespace Quillet
