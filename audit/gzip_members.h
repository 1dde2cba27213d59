#pragma once

#include <cstddef>
#include <functional>

namespace Quillet {

enum class GzipContent {
  intact,   // complete gzip members with right checksums and nothing after the last
  damaged,  // anything else; some bytes may have been unpacked
  refused,  // no more bytes were wanted
};

/// Takes the next unpacked bytes; false when no more are wanted.
using TakeBytes = std::function<bool(const unsigned char* bytes, std::size_t count)>;

/// Unpacks the gzip members of an open file, from where that stands, by zlib alone. Throws
/// std::bad_alloc and what `take` throws.
GzipContent unpackMembers(int descriptor, const TakeBytes& take);

}  // namespace Quillet
