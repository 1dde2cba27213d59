#include "trace/stored_arrays.h"

#include <algorithm>

namespace Quillet {

namespace {

// Up to this many entries are accepted even when the file is too short for them.
constexpr std::uint32_t unbackedCountLimit = 4'194'304;

/// Reads `count` values, and sets those to 0 that the file does not hold. `read(destination, n)`
/// takes a signed count and returns how many values it stored.
template <typename Value, typename Read>
void readThenZero(Value* destination, std::size_t count, Read read) {
  constexpr std::size_t largestRead = std::size_t{1} << 30;
  std::size_t held = 0;
  while (held < count) {
    const std::size_t wanted = std::min(count - held, largestRead);
    const auto got =
        static_cast<std::size_t>(read(destination + held, static_cast<std::int32_t>(wanted)));
    held += got;
    if (got < wanted) break;
  }
  std::fill(destination + held, destination + count, Value{0});
}

}  // namespace

bool isBacked(const Tessaly::FileReader& file, std::uint32_t count, std::int64_t offset,
              std::int64_t byteCount) {
  return count <= unbackedCountLimit || (offset >= 0 && offset + byteCount <= file.fileSize());
}

void readArray(Tessaly::FileReader& file, char* destination, std::size_t count) {
  readThenZero(destination, count, [&](char* to, std::int32_t n) { return file.readBytes(to, n); });
}

void readArray(Tessaly::FileReader& file, std::uint8_t* destination, std::size_t count) {
  readThenZero(destination, count,
               [&](std::uint8_t* to, std::int32_t n) { return file.readBytes(to, n); });
}

void readArray(Tessaly::FileReader& file, std::uint16_t* destination, std::size_t count) {
  readThenZero(destination, count,
               [&](std::uint16_t* to, std::int32_t n) { return file.readUInt16Array(to, n); });
}

void readArray(Tessaly::FileReader& file, std::uint32_t* destination, std::size_t count) {
  readThenZero(destination, count,
               [&](std::uint32_t* to, std::int32_t n) { return file.readUInt32Array(to, n); });
}

std::int32_t readOrZero(Tessaly::FileReader& file, unsigned char* bytes, std::int32_t wanted) {
  const std::int32_t held = file.readBytes(bytes, wanted);
  std::fill(bytes + held, bytes + wanted, static_cast<unsigned char>(0));
  return held;
}

void zeroCutValue(unsigned char* bytes, std::int32_t held, std::int32_t size) {
  const std::int32_t whole = held / size * size;
  std::fill(bytes + whole, bytes + held, static_cast<unsigned char>(0));
}

}  // namespace Quillet
