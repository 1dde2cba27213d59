#include "report/deflated.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>
#include <zlib.h>

namespace Quillet {

namespace {

constexpr int level = 6;
constexpr int windowBits = 15;  // with the header of zlib
constexpr int memoryLevel = 9;  // blocks of 32,768 bytes, so that few end within a kind

/// A zlib stream in the making.
class Deflation {
 public:
  Deflation() {
    if (deflateInit2(&stream_, level, Z_DEFLATED, windowBits, memoryLevel, Z_RLE) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  ~Deflation() { deflateEnd(&stream_); }
  Deflation(const Deflation&) = delete;
  Deflation& operator=(const Deflation&) = delete;

  /// Takes all bytes; `flush` says what happens after the last.
  void take(std::string_view bytes, int flush) {
    bool isAllTaken = false;
    do {
      const std::size_t most = std::numeric_limits<uInt>::max();
      const std::size_t count = std::min(bytes.size(), most);
      const bool isLast = count == bytes.size();
      // zlib leaves its input as it is, though its declaration does not say so.
      stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
      stream_.avail_in = static_cast<uInt>(count);
      stream_.next_out = buffer_.data();
      stream_.avail_out = static_cast<uInt>(buffer_.size());
      deflate(&stream_, isLast ? flush : Z_NO_FLUSH);
      bytes.remove_prefix(count - stream_.avail_in);
      packed_.append(reinterpret_cast<const char*>(buffer_.data()),
                     buffer_.size() - stream_.avail_out);
      isAllTaken = isLast && stream_.avail_out > 0;  // room is left only when nothing waits
    } while (!isAllTaken);
  }
  std::string taken() { return std::move(packed_); }

 private:
  z_stream stream_{};
  std::array<Bytef, std::size_t{1} << 15> buffer_;
  std::string packed_;
};

}  // namespace

std::string deflated(std::string_view bytes, std::span<const std::size_t> cuts) {
  Deflation deflation;
  std::size_t start = 0;
  for (const std::size_t cut : cuts) {
    deflation.take(bytes.substr(start, cut - start), Z_BLOCK);
    start = cut;
  }
  deflation.take(bytes.substr(start), Z_FINISH);
  return deflation.taken();
}

}  // namespace Quillet
