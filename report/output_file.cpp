#include "report/output_file.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

#include "audit/descriptor.h"

namespace Quillet {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 16;
constexpr int mostLinks = 40;  // as the system allows

/// Names of begun files, for the signal handler; a null entry is free.
std::array<std::atomic<const char*>, 8> begunFiles{};
static_assert(std::atomic<const char*>::is_always_lock_free);

extern "C" void removeBegunFiles(int signalNumber) {
  for (const auto& file : begunFiles) {
    if (file != nullptr) unlink(file);
  }
  std::signal(signalNumber, SIG_DFL);
  std::raise(signalNumber);
}

int noteBegunFile(const char* name) {
  for (std::size_t slot = 0; slot < begunFiles.size(); ++slot) {
    if (begunFiles[slot] == nullptr) {
      begunFiles[slot] = name;
      return static_cast<int>(slot);
    }
  }
  return -1;
}

void forgetBegunFile(int& slot) {
  if (slot >= 0) begunFiles[static_cast<std::size_t>(slot)] = nullptr;
  slot = -1;
}

/// The name that a chain of symbolic links leads to, whether or not there is a file; empty when the
/// chain has no end.
std::string followed(const std::string& name) {
  std::filesystem::path path = name;
  for (int links = 0; links < mostLinks; ++links) {
    std::error_code error;
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) return path.string();
    path = path.parent_path() / next;  // an absolute `next` stands alone
  }
  return {};
}

}  // namespace

OutputFile::OutputFile(const std::string& name) : name_(name) {
  buffer_.reserve(bufferSize);
  if (name == "-") {
    descriptor_ = STDOUT_FILENO;
    isTerminal_ = isatty(descriptor_) != 0;
    return;
  }
  if (name.empty()) fail(ENOENT);
  struct stat status {};
  const bool exists = stat(name.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) {
    descriptor_ = open(name.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor_ < 0) fail(errno);
    isTerminal_ = isatty(descriptor_) != 0;
    return;
  }
  if (!exists && errno != ENOENT) fail(errno);
  // A rename would replace a file that its mode protects.
  if (exists && faccessat(AT_FDCWD, name.c_str(), W_OK, AT_EACCESS) != 0) fail(errno);
  target_ = followed(name);
  if (target_.empty()) fail(ELOOP);
  if (std::filesystem::path(target_).filename().empty()) fail(EISDIR);
  begin();
  if (exists && fchmod(descriptor_, status.st_mode & 07777) != 0) {
    const int error = errno;
    close(descriptor_);
    unlink(begun_.c_str());
    forgetBegunFile(slot_);
    fail(error);
  }
}

OutputFile::~OutputFile() {
  if (descriptor_ > STDERR_FILENO) close(descriptor_);
  if (!begun_.empty()) unlink(begun_.c_str());
  forgetBegunFile(slot_);
}

/// Makes the hidden file. Two programs that write the same name at the same time have one each.
void OutputFile::begin() {
  const std::filesystem::path folder = std::filesystem::path(target_).parent_path();
  for (int number = 0; descriptor_ < 0; ++number) {
    const std::string name =
        ".quillet-report-" + std::to_string(getpid()) + '-' + std::to_string(number);
    begun_ = (folder / name).string();
    descriptor_ = open(begun_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && errno != EEXIST) {
      const int error = errno;
      begun_.clear();
      fail(error);
    }
  }
  slot_ = noteBegunFile(begun_.c_str());
}

void OutputFile::write(std::string_view bytes) {
  while (buffer_.size() + bytes.size() >= bufferSize) {
    const std::size_t count = bufferSize - buffer_.size();
    buffer_.append(bytes.substr(0, count));
    bytes.remove_prefix(count);
    flush();
  }
  buffer_.append(bytes);
}

void OutputFile::flush() {
  if (!writeAll(descriptor_, buffer_)) fail(errno);
  buffer_.clear();
}

void OutputFile::finish() {
  flush();
  // Some file systems find a full disk only when the bytes reach it, or when the file is closed.
  if (!begun_.empty() && fsync(descriptor_) != 0) fail(errno);
  const int closing = descriptor_ == STDOUT_FILENO ? dup(descriptor_) : descriptor_;
  descriptor_ = -1;
  if (closing < 0 || close(closing) != 0) fail(errno);
}

void OutputFile::publish() {
  if (begun_.empty()) return;
  if (std::rename(begun_.c_str(), target_.c_str()) != 0) fail(errno);
  forgetBegunFile(slot_);
  begun_.clear();
}

void OutputFile::fail(int errorNumber) const {
  throw std::runtime_error("can not write " + (name_ == "-" ? "standard output" : name_) + ": " +
                           std::strerror(errorNumber));
}

void removeBegunFilesOnSignals() {
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGXCPU}) {
    // What is ignored stays ignored, as under nohup.
    if (std::signal(number, removeBegunFiles) == SIG_IGN) std::signal(number, SIG_IGN);
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace Quillet
