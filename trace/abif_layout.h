#pragma once

#include <cstdint>

// The ABIF container: a header, a directory of tagged entries, and data anywhere in the file. All
// numbers are big-endian. In some files a prefix stands before the header.
namespace Quillet::AbifLayout {

constexpr std::int32_t prefixSize = 128;  // bytes before the "ABIF" in a file with a prefix

// Header: byte offsets from the "ABIF". The directory's own entry starts at byte 6.
constexpr std::uint32_t headerMagic = 0;             // 4 characters, "ABIF"
constexpr std::uint32_t headerEntrySize = 16;        // uint16, bytes from one entry to the next
constexpr std::uint32_t headerEntryCount = 18;       // uint32
constexpr std::uint32_t headerDirectoryOffset = 26;  // uint32, bytes from the "ABIF"

// Directory entry: byte offsets from the start of the entry.
constexpr std::uint32_t entryName = 0;           // 4 characters
constexpr std::uint32_t entryNumber = 4;         // uint32
constexpr std::uint32_t entryElementCount = 12;  // uint32
constexpr std::uint32_t entryDataSize = 16;      // uint32, bytes
constexpr std::uint32_t entryDataOffset = 20;    // uint32, bytes; for FWO_ the 4 letters themselves

constexpr std::int32_t nameSize = 4;       // characters of an entry's name
constexpr std::int32_t baseOrderSize = 4;  // letters of FWO_, one for each channel

constexpr std::uint32_t firstChannelNumber = 9;  // DATA 9..12 are the analysed channels,
constexpr std::uint32_t lastChannelNumber = 12;  // in the order that FWO_ 1 gives
constexpr std::uint32_t callNumber = 1;          // PBAS, PCON, PLOC 1: the edited calls
constexpr std::uint32_t callerNameNumber = 2;    // SPAC 2: the base caller

}  // namespace Quillet::AbifLayout
