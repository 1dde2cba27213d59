#pragma once

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <unistd.h>

/// Redirects file descriptor 2 to `target` while it lives. The caller keeps and closes `target`.
class RedirectedStderr {
 public:
  explicit RedirectedStderr(int target) : former_(dup(STDERR_FILENO)) {
    std::cerr.flush();
    if (former_ < 0 || dup2(target, STDERR_FILENO) < 0) throw std::runtime_error("no redirection");
  }
  ~RedirectedStderr() {
    std::cerr.flush();
    dup2(former_, STDERR_FILENO);
    close(former_);
  }
  RedirectedStderr(const RedirectedStderr&) = delete;
  RedirectedStderr& operator=(const RedirectedStderr&) = delete;

 private:
  int former_;
};

/// Collects the standard error output of streams, descriptors and child processes while it lives.
class CapturedStderr {
 public:
  /// The output since construction.
  std::string text() const {
    std::cerr.flush();
    std::string bytes(static_cast<std::size_t>(lseek(fileno(file_.handle), 0, SEEK_END)), '\0');
    const ssize_t count = pread(fileno(file_.handle), bytes.data(), bytes.size(), 0);
    if (count != static_cast<ssize_t>(bytes.size())) throw std::runtime_error("capture is short");
    return bytes;
  }

 private:
  struct TemporaryFile {
    TemporaryFile() : handle(std::tmpfile()) {
      if (handle == nullptr) throw std::runtime_error("no temporary file");
    }
    ~TemporaryFile() { std::fclose(handle); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    std::FILE* handle;
  };

  TemporaryFile file_;
  RedirectedStderr redirection_{fileno(file_.handle)};
};
