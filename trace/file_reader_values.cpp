#include "trace/file_reader.h"

// Single values, runs of bytes and arrays.

#include <algorithm>
#include <concepts>
#include <cstring>

#include "foundation/big_endian.h"

namespace Tessaly {
namespace {

static_assert(sizeof(float) == 4 && sizeof(double) == 8, "widths of the stored floating values");

/// Stores the `count` values that the bytes hold.
template <typename Value>
void decode(const char* bytes, Value* values, std::int32_t count) {
  const auto valueCount = static_cast<std::size_t>(count);  // never negative
  if constexpr (std::integral<Value> && sizeof(Value) == 2) {
    for (std::size_t i = 0; i < valueCount; ++i) {
      values[i] = static_cast<Value>(bigEndian16(bytes + i * 2));  // same bits, perhaps signed
    }
  } else if constexpr (std::integral<Value> && sizeof(Value) == 4) {
    for (std::size_t i = 0; i < valueCount; ++i) {
      values[i] = static_cast<Value>(bigEndian32(bytes + i * 4));  // same bits, perhaps signed
    }
  } else {  // single bytes, and floating values in host order
    std::memcpy(values, bytes, valueCount * sizeof(Value));
  }
}

}  // namespace

/// Copies up to `count` bytes, across blocks, and returns how many.
std::int32_t FileReader::takeBytes(void* destination, std::int32_t count) {
  std::int32_t taken = 0;
  while (taken < count) {
    if (isExhausted() && !refill()) break;
    const std::int32_t run = std::min(unreadCount(), count - taken);
    std::memcpy(static_cast<char*>(destination) + taken, unread(), static_cast<std::size_t>(run));
    cursor_ += run;
    taken += run;
  }
  return taken;
}

/// Copies `size` bytes; false when fewer are left. In the last block none is used up then.
bool FileReader::takeWhole(void* destination, std::int32_t size) {
  if (unreadCount() < size && atEnd_) return false;
  return takeBytes(destination, size) == size;
}

template <typename Value>
bool FileReader::takeValue(Value& value) {
  if (unreadCount() >= static_cast<std::int32_t>(sizeof(Value))) {  // nearly always
    decode(unread(), &value, 1);
    cursor_ += static_cast<std::int32_t>(sizeof(Value));
    return true;
  }
  char bytes[sizeof(Value)];
  if (!takeWhole(bytes, sizeof(Value))) return false;
  decode(bytes, &value, 1);
  return true;
}

template <typename Value>
std::int32_t FileReader::takeArray(Value* destination, std::int32_t count) {
  constexpr std::int32_t size = sizeof(Value);
  std::int32_t taken = 0;
  while (taken < count) {
    const auto run = static_cast<std::int32_t>(  // fits: at most the count
        std::min<std::int64_t>(unreadInWindow() / size, count - taken));
    if (run == 0) {  // the next value does not lie whole in those blocks
      if (!takeValue(destination[taken])) break;
      ++taken;
      continue;
    }
    decode(unread(), destination + taken, run);
    pass(std::int64_t{run} * size);
    taken += run;
  }
  return taken;
}

bool FileReader::readInt8(std::int8_t& value) { return takeValue(value); }
bool FileReader::readUInt8(std::uint8_t& value) { return takeValue(value); }
bool FileReader::readInt16(std::int16_t& value) { return takeValue(value); }
bool FileReader::readUInt16(std::uint16_t& value) { return takeValue(value); }
bool FileReader::readInt32(std::int32_t& value) { return takeValue(value); }
bool FileReader::readUInt32(std::uint32_t& value) { return takeValue(value); }
bool FileReader::readFloat(float& value) { return takeValue(value); }
bool FileReader::readDouble(double& value) { return takeValue(value); }

bool FileReader::readInt8At(std::int32_t position, std::int8_t& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readUInt8At(std::int32_t position, std::uint8_t& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readInt16At(std::int32_t position, std::int16_t& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readUInt16At(std::int32_t position, std::uint16_t& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readInt32At(std::int32_t position, std::int32_t& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readUInt32At(std::int32_t position, std::uint32_t& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readFloatAt(std::int32_t position, float& value) {
  return seek(position) && takeValue(value);
}
bool FileReader::readDoubleAt(std::int32_t position, double& value) {
  return seek(position) && takeValue(value);
}

std::int32_t FileReader::readBytes(char* destination, std::int32_t count) {
  return takeBytes(destination, count);
}
std::int32_t FileReader::readBytes(std::int8_t* destination, std::int32_t count) {
  return takeBytes(destination, count);
}
std::int32_t FileReader::readBytes(std::uint8_t* destination, std::int32_t count) {
  return takeBytes(destination, count);
}
std::int32_t FileReader::readBytesAt(std::int32_t position, char* destination, std::int32_t count) {
  return seek(position) ? takeBytes(destination, count) : 0;
}
std::int32_t FileReader::readBytesAt(std::int32_t position, std::int8_t* destination,
                                     std::int32_t count) {
  return seek(position) ? takeBytes(destination, count) : 0;
}
std::int32_t FileReader::readBytesAt(std::int32_t position, std::uint8_t* destination,
                                     std::int32_t count) {
  return seek(position) ? takeBytes(destination, count) : 0;
}

std::int32_t FileReader::readInt16Array(std::int16_t* destination, std::int32_t count) {
  return takeArray(destination, count);
}
std::int32_t FileReader::readUInt16Array(std::uint16_t* destination, std::int32_t count) {
  return takeArray(destination, count);
}
std::int32_t FileReader::readInt32Array(std::int32_t* destination, std::int32_t count) {
  return takeArray(destination, count);
}
std::int32_t FileReader::readUInt32Array(std::uint32_t* destination, std::int32_t count) {
  return takeArray(destination, count);
}
std::int32_t FileReader::readFloatArray(float* destination, std::int32_t count) {
  return takeArray(destination, count);
}
std::int32_t FileReader::readDoubleArray(double* destination, std::int32_t count) {
  return takeArray(destination, count);
}

}  // namespace Tessaly
