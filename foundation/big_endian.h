#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace Tessaly {

// The trace formats store numbers with the most significant byte first. Only these functions turn
// bytes into numbers and numbers into bytes. On a little-endian host the compiler reduces each to
// one load or store and one byte swap.

/// `value` with its bytes in reverse order.
inline std::uint16_t swapBytes(std::uint16_t value) {
  return static_cast<std::uint16_t>((value << 8) | (value >> 8));  // back to 16 bits
}

/// `value` with its bytes in reverse order.
inline std::uint32_t swapBytes(std::uint32_t value) {
  return (value << 24) | ((value & 0xFF00u) << 8) | ((value >> 8) & 0xFF00u) | (value >> 24);
}

/// The 16-bit number whose two bytes start at `bytes`.
inline std::uint16_t bigEndian16(const void* bytes) {
  std::uint16_t value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return std::endian::native == std::endian::big ? value : swapBytes(value);
}

/// The 32-bit number whose four bytes start at `bytes`.
inline std::uint32_t bigEndian32(const void* bytes) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes, sizeof value);
  return std::endian::native == std::endian::big ? value : swapBytes(value);
}

/// Stores `value` as two bytes at `bytes`.
inline void putBigEndian16(void* bytes, std::uint16_t value) {
  if constexpr (std::endian::native != std::endian::big) value = swapBytes(value);
  std::memcpy(bytes, &value, sizeof value);
}

/// Stores `value` as four bytes at `bytes`.
inline void putBigEndian32(void* bytes, std::uint32_t value) {
  if constexpr (std::endian::native != std::endian::big) value = swapBytes(value);
  std::memcpy(bytes, &value, sizeof value);
}

}  // namespace Tessaly
