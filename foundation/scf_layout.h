#pragma once

#include <cstdint>

// The Standard Chromatogram Format, versions 2 and 3, after its published description. All numbers
// are big-endian. The reader and the writer share this table.
namespace Quillet::ScfLayout {

// Header: byte offsets from the start of the file.
constexpr std::int32_t headerMagic = 0;            // 4 characters, ".scf"
constexpr std::int32_t headerSampleCount = 4;      // uint32, samples in each channel
constexpr std::int32_t headerSamplesOffset = 8;    // uint32, bytes from the start of the file
constexpr std::int32_t headerBaseCount = 12;       // uint32
constexpr std::int32_t headerLeftClip = 16;        // uint32, bases
constexpr std::int32_t headerRightClip = 20;       // uint32, bases
constexpr std::int32_t headerBasesOffset = 24;     // uint32, bytes from the start of the file
constexpr std::int32_t headerCommentsSize = 28;    // uint32, bytes
constexpr std::int32_t headerCommentsOffset = 32;  // uint32, bytes from the start of the file
constexpr std::int32_t headerVersion = 36;         // 4 characters such as "3.00"
constexpr std::int32_t headerSampleSize = 40;      // uint32, bytes per sample: 1 or 2
constexpr std::int32_t headerSize = 128;

// Version 2 base record: byte offsets from the start of the record.
constexpr std::int32_t baseRecordPeak = 0;           // uint32, 0-based sample index
constexpr std::int32_t baseRecordProbabilities = 4;  // 4 bytes: A, C, G, T
constexpr std::int32_t baseRecordBase = 8;           // 1 character
constexpr std::int32_t baseRecordSpare = 9;          // 3 bytes
constexpr std::int32_t baseRecordSize = 12;

}  // namespace Quillet::ScfLayout
