#include "report/deflated.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <new>
#include <zlib.h>

namespace Quillet {

namespace {

constexpr int level = 6;
constexpr int windowBits = 15;  // with the header of zlib
constexpr int memoryLevel = 8;  // zlib's default

}  // namespace

std::string deflated(std::string_view bytes) {
  z_stream stream{};
  if (deflateInit2(&stream, level, Z_DEFLATED, windowBits, memoryLevel, Z_RLE) != Z_OK) {
    throw std::bad_alloc();
  }
  std::string packed;
  std::array<Bytef, std::size_t{1} << 14> buffer;
  int status = Z_OK;
  while (status != Z_STREAM_END) {
    const std::size_t most = std::numeric_limits<uInt>::max();
    const std::size_t count = std::min(bytes.size(), most);
    // zlib does not write to its input; its declaration only says so when ZLIB_CONST is defined.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(count);
    stream.next_out = buffer.data();
    stream.avail_out = static_cast<uInt>(buffer.size());
    status = deflate(&stream, count == bytes.size() ? Z_FINISH : Z_NO_FLUSH);
    bytes.remove_prefix(count - stream.avail_in);
    packed.append(reinterpret_cast<const char*>(buffer.data()), buffer.size() - stream.avail_out);
  }
  deflateEnd(&stream);
  return packed;
}

}  // namespace Quillet
