#pragma once

#include <cstdint>
#include <string_view>

// What an ABIF directory entry says about its data, and the entries that hold an instrument's
// notes. Source of every offset, type and name: the published description of the ABIF file format
// and of its tags for sequencing instruments.
namespace Quillet::AbifNotesLayout {

// Directory entry: byte offsets from the start of the entry. The others are in trace/abif_layout.h.
constexpr std::uint32_t entryType = 8;       // uint16, type of the elements; see below
constexpr std::int32_t entryBytesRead = 24;  // up to and including the data offset

// Data of so many bytes or fewer stand in the entry's offset field itself; the offset of longer
// data counts from the "ABIF".
constexpr std::uint32_t mostInEntry = 4;

// Types of elements.
constexpr std::uint16_t typeShort = 4;     // int16
constexpr std::uint16_t typeDate = 10;     // int16 year, uint8 month, uint8 day; both from 1
constexpr std::uint16_t typePString = 18;  // a length byte, then as many characters
constexpr std::uint16_t typeCString = 19;  // characters up to a zero byte

constexpr std::uint32_t dateYear = 0;
constexpr std::uint32_t dateMonth = 2;
constexpr std::uint32_t dateDay = 3;
constexpr std::uint32_t dateSize = 4;

// Names; the number of each entry is 1.
constexpr std::uint32_t noteNumber = 1;
constexpr std::string_view plateName = "CTNM";          // container; type 19
constexpr std::string_view wellName = "TUBE";           // type 18
constexpr std::string_view capillaryName = "LANE";      // type 4
constexpr std::string_view signalToNoiseName = "S/N%";  // type 4, one for each channel
constexpr std::string_view instrumentName = "MCHN";     // type 18
constexpr std::string_view runDateName = "RUND";        // start of the run; type 10

}  // namespace Quillet::AbifNotesLayout
