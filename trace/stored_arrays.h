#pragma once

#include <cstddef>
#include <cstdint>

#include "trace/file_reader.h"

// For the trace readers: values whose number the file claims, although it may not hold them.
namespace Quillet {

/// Whether an array of `count` entries may be read: the file holds all `byteCount` bytes from
/// `offset` on, or the count is small enough to fill the array with zeros. Ask before allocating.
bool isBacked(const Tessaly::FileReader& file, std::uint32_t count, std::int64_t offset,
              std::int64_t byteCount);

// Read `count` values from the current position on. Values after the end of the file are 0.
void readArray(Tessaly::FileReader& file, char* destination, std::size_t count);
void readArray(Tessaly::FileReader& file, std::uint8_t* destination, std::size_t count);
void readArray(Tessaly::FileReader& file, std::uint16_t* destination, std::size_t count);
void readArray(Tessaly::FileReader& file, std::uint32_t* destination, std::size_t count);

/// For records of several values: reads up to `wanted` bytes, fills the rest of them with zeros,
/// and returns how many were read. Give that to zeroCutValue().
std::int32_t readOrZero(Tessaly::FileReader& file, unsigned char* bytes, std::int32_t wanted);

/// Of `held` bytes that were read as values of `size` bytes, zeroes an incomplete last value.
void zeroCutValue(unsigned char* bytes, std::int32_t held, std::int32_t size);

}  // namespace Quillet
