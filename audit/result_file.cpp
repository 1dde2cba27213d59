#include "audit/result_file.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace Quillet {

namespace {

constexpr std::int64_t largestBuffer = 1 << 18;    // bytes; results of ordinary traces fit
constexpr std::int64_t longestResult = 1LL << 28;  // bytes; ten times that of four million bases

}  // namespace

// A pipe does not keep this waiting, and a terminal does not become the program's own.
ResultFile::ResultFile(const std::string& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
  struct stat status;
  exists_ = descriptor_.isOpen() || stat(path.c_str(), &status) == 0;
  if (!descriptor_.isOpen()) return;
  if (fstat(descriptor_.number(), &status) == 0 && S_ISREG(status.st_mode)) {
    size_ = status.st_size;
  } else {
    descriptor_.close();
  }
}

bool ResultFile::refill() {
  if (!descriptor_.isOpen()) return false;
  if (buffer_ == nullptr) {
    capacity_ = static_cast<std::size_t>(std::clamp<std::int64_t>(size_, 1, largestBuffer));
    buffer_ = std::make_unique_for_overwrite<char[]>(capacity_);
  }
  bufferOffset_ += static_cast<std::int64_t>(end_);
  cursor_ = end_ = 0;
  // The size is trusted: it saves the read that would find the end of every file.
  if (bufferOffset_ >= size_) return false;
  const ssize_t got = readSomeAt(descriptor_.number(), buffer_.get(), capacity_, bufferOffset_);
  if (got > 0) end_ = static_cast<std::size_t>(got);
  return got > 0;
}

std::size_t ResultFile::match(const char* bytes, std::size_t count) {
  std::size_t matched = 0;
  while (matched < count) {
    if (cursor_ == end_ && !refill()) return matched;
    const std::size_t compared = std::min(count - matched, end_ - cursor_);
    const char* const wanted = bytes + matched;
    const char* const held = buffer_.get() + cursor_;
    if (std::memcmp(wanted, held, compared) != 0) {
      const auto equal =
          static_cast<std::size_t>(std::mismatch(wanted, wanted + compared, held).first - wanted);
      cursor_ += equal;
      return matched + equal;
    }
    cursor_ += compared;
    matched += compared;
  }
  return matched;
}

bool ResultFile::moveToLineFeed() {
  while (cursor_ < end_ || refill()) {
    const char* const begin = buffer_.get() + cursor_;
    const auto* const found = static_cast<const char*>(std::memchr(begin, '\n', end_ - cursor_));
    if (found != nullptr) {
      cursor_ += static_cast<std::size_t>(found - begin);
      return true;
    }
    cursor_ = end_;
  }
  return false;
}

bool ResultFile::isAtEnd() { return cursor_ == end_ && !refill(); }

std::optional<std::string> ResultFile::textFrom(std::int64_t offset) const {
  if (!descriptor_.isOpen() || size_ - offset > longestResult) return std::nullopt;
  std::string text(static_cast<std::size_t>(std::max<std::int64_t>(size_ - offset, 0)), '\0');
  std::size_t held = 0;
  while (held < text.size()) {
    const ssize_t got = readSomeAt(descriptor_.number(), text.data() + held, text.size() - held,
                                   offset + static_cast<std::int64_t>(held));
    if (got < 0) return std::nullopt;
    if (got == 0) break;
    held += static_cast<std::size_t>(got);
  }
  text.resize(held);
  return text;
}

}  // namespace Quillet
