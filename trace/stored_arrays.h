#pragma once

#include <cstddef>
#include <cstdint>

#include "trace/file_reader.h"

// What the trace readers share: arrays whose length a file claims, and may not hold.
namespace Quillet {

/// Whether a claim of `count` entries is accepted: the file holds all `byteCount` bytes from
/// `offset` on, or the claim is small enough to be filled with zeros. Ask before allocating.
bool isBacked(const Tessaly::FileReader& file, std::uint32_t count, std::int64_t offset,
              std::int64_t byteCount);

// Read `count` values from the current position on; values after the end of the file are zero.
void readArray(Tessaly::FileReader& file, char* destination, std::size_t count);
void readArray(Tessaly::FileReader& file, std::uint8_t* destination, std::size_t count);
void readArray(Tessaly::FileReader& file, std::uint16_t* destination, std::size_t count);
void readArray(Tessaly::FileReader& file, std::uint32_t* destination, std::size_t count);

}  // namespace Quillet
