#pragma once

#include <cstdint>

#include "trace/file_reader.h"

/// The byte at the position (0..255); -1 when there is none.
inline int byteAt(Tessaly::FileReader& reader, std::int32_t position) {
  std::uint8_t value = 0;
  return reader.readUInt8At(position, value) ? value : -1;
}

/// The byte at the reader's position (0..255); -1 when there is none.
inline int nextByte(Tessaly::FileReader& reader) {
  std::uint8_t value = 0;
  return reader.readUInt8(value) ? value : -1;
}
