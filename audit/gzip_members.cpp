#include "audit/gzip_members.h"

#include <memory>
#include <new>
#include <zlib.h>

#include "audit/descriptor.h"

namespace Quillet {

namespace {

constexpr std::size_t chunkSize = 1 << 18;  // bytes read or unpacked at a time

/// zlib's state for gzip members.
class Inflation {
 public:
  explicit Inflation(const TakeBytes& take) : take_(take) {
    constexpr int gzipOnly = 16;
    if (inflateInit2(&stream_, MAX_WBITS + gzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Inflation() { inflateEnd(&stream_); }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;

  GzipContent unpackAll(int from) {
    for (;;) {
      const ssize_t got = readSome(from, packed_.get(), chunkSize);
      stream_.avail_in = got > 0 ? static_cast<unsigned>(got) : 0;
      stream_.next_in = packed_.get();
      if (stream_.avail_in == 0) return atMemberEnd_ ? GzipContent::intact : GzipContent::damaged;
      const GzipContent content = unpackChunk();
      if (content != GzipContent::intact) return content;
    }
  }

 private:
  /// Unpacks what was read; intact as far as it goes, or why not.
  GzipContent unpackChunk() {
    do {
      if (atMemberEnd_) {
        inflateReset(&stream_);
        atMemberEnd_ = false;
      }
      stream_.next_out = unpacked_.get();
      stream_.avail_out = chunkSize;
      const int status = inflate(&stream_, Z_NO_FLUSH);
      if (!take_(unpacked_.get(), chunkSize - stream_.avail_out)) return GzipContent::refused;
      if (status == Z_STREAM_END) {
        atMemberEnd_ = true;
      } else if (status != Z_OK && status != Z_BUF_ERROR) {
        return GzipContent::damaged;  // Z_BUF_ERROR: nothing was left to do
      }
    } while (stream_.avail_in > 0 || (stream_.avail_out == 0 && !atMemberEnd_));
    return GzipContent::intact;
  }

  const TakeBytes& take_;
  z_stream stream_{};
  bool atMemberEnd_ = false;
  std::unique_ptr<unsigned char[]> packed_ =
      std::make_unique_for_overwrite<unsigned char[]>(chunkSize);
  std::unique_ptr<unsigned char[]> unpacked_ =
      std::make_unique_for_overwrite<unsigned char[]>(chunkSize);
};

}  // namespace

GzipContent unpackMembers(int descriptor, const TakeBytes& take) {
  return Inflation(take).unpackAll(descriptor);
}

}  // namespace Quillet
