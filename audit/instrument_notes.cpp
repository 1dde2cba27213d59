#include "audit/instrument_notes.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "audit/instrument_notes_layout.h"
#include "foundation/big_endian.h"
#include "foundation/channels.h"
#include "trace/abif_layout.h"
#include "trace/file_reader.h"

namespace Quillet {

namespace {

using namespace AbifLayout;
using namespace AbifNotesLayout;

/// Offsets are added modulo 2^32. The sum is a file position; from 2^31 on it is negative.
std::int32_t signedOffset(std::uint32_t offset) { return static_cast<std::int32_t>(offset); }

/// One directory entry and where its data stand.
struct Entry {
  std::uint16_t type = 0;
  std::uint32_t dataSize = 0;
  std::uint32_t dataOffset = 0;  // bytes into the file; of the entry's own field where they fit
};

constexpr std::uint32_t longestPString = 1 + 255;    // bytes, with the length
constexpr std::uint32_t longestCString = 64 * 1024;  // bytes that are looked at

/// The first bytes of an entry's data, `most` at most. None when the entry has another type, or the
/// file does not hold `least` bytes of it and all that are looked at.
std::optional<std::string> dataOf(Tessaly::FileReader& file, const Entry& entry, std::uint16_t type,
                                  std::uint32_t least, std::uint32_t most) {
  const std::int32_t offset = signedOffset(entry.dataOffset);
  if (entry.type != type || entry.dataSize < least || offset < 0) return std::nullopt;
  const auto size = static_cast<std::int32_t>(std::min(entry.dataSize, most));
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (file.readBytesAt(offset, bytes.data(), size) < size) return std::nullopt;
  return bytes;
}

std::optional<std::string> pascalText(Tessaly::FileReader& file, const Entry& entry) {
  const auto bytes = dataOf(file, entry, typePString, 1, longestPString);
  if (!bytes) return std::nullopt;
  return bytes->substr(1, static_cast<unsigned char>(bytes->front()));
}

std::optional<std::string> terminatedText(Tessaly::FileReader& file, const Entry& entry) {
  auto bytes = dataOf(file, entry, typeCString, 0, longestCString);
  if (bytes) bytes->resize(std::min(bytes->find('\0'), bytes->size()));
  return bytes;
}

std::int16_t shortAt(const std::string& bytes, std::size_t offset) {
  return static_cast<std::int16_t>(Tessaly::bigEndian16(bytes.data() + offset));
}

/// The smallest of the first `count` numbers.
std::optional<std::int32_t> smallestShort(Tessaly::FileReader& file, const Entry& entry,
                                          std::uint32_t count) {
  const auto bytes = dataOf(file, entry, typeShort, 2 * count, 2 * count);
  if (!bytes) return std::nullopt;
  std::int32_t smallest = shortAt(*bytes, 0);
  for (std::uint32_t i = 1; i < count; ++i) {
    smallest = std::min<std::int32_t>(smallest, shortAt(*bytes, std::size_t{2} * i));
  }
  return smallest;
}

/// A date as year-month-day; none when there is no such month, day or year.
std::optional<std::string> dateText(Tessaly::FileReader& file, const Entry& entry) {
  const auto bytes = dataOf(file, entry, typeDate, dateSize, dateSize);
  if (!bytes) return std::nullopt;
  const int year = shortAt(*bytes, dateYear);
  const int month = static_cast<unsigned char>((*bytes)[dateMonth]);
  const int day = static_cast<unsigned char>((*bytes)[dateDay]);
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 || day > 31) {
    return std::nullopt;
  }
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
  return text;
}

/// The entries that hold notes, one for each name; an entry that is not there has no type.
///
/// Their data are read after the walk: a directory may name the same long data any number of times.
struct NoteEntries {
  Entry plate;
  Entry well;
  Entry capillary;
  Entry signalToNoise;
  Entry instrument;
  Entry runDate;

  /// Null when entries of this name are no notes.
  Entry* named(std::string_view name) {
    if (name == plateName) return &plate;
    if (name == wellName) return &well;
    if (name == capillaryName) return &capillary;
    if (name == signalToNoiseName) return &signalToNoise;
    if (name == instrumentName) return &instrument;
    if (name == runDateName) return &runDate;
    return nullptr;
  }
};

NoteEntries walkDirectory(Tessaly::FileReader& file, std::uint32_t baseOffset) {
  NoteEntries notes;
  std::uint16_t entrySize = 0;
  std::uint32_t entryCount = 0;
  std::uint32_t entryOffset = 0;
  if (!file.readUInt16At(signedOffset(baseOffset + headerEntrySize), entrySize) ||
      !file.readUInt32At(signedOffset(baseOffset + headerEntryCount), entryCount) ||
      !file.readUInt32At(signedOffset(baseOffset + headerDirectoryOffset), entryOffset)) {
    return notes;
  }
  // Entries of size 0 are all the same one. Any other walk ends where the file does.
  if (entrySize == 0) entryCount = std::min(entryCount, 1u);
  entryOffset += baseOffset;
  for (std::uint32_t index = 0; index < entryCount; ++index, entryOffset += entrySize) {
    char bytes[entryBytesRead];
    if (file.readBytesAt(signedOffset(entryOffset), bytes, entryBytesRead) < entryBytesRead) break;
    if (Tessaly::bigEndian32(bytes + entryNumber) != noteNumber) continue;
    Entry* const entry = notes.named({bytes + entryName, nameSize});
    if (entry == nullptr) continue;
    entry->type = Tessaly::bigEndian16(bytes + entryType);
    entry->dataSize = Tessaly::bigEndian32(bytes + entryDataSize);
    entry->dataOffset = entry->dataSize <= mostInEntry
                            ? entryOffset + entryDataOffset
                            : Tessaly::bigEndian32(bytes + entryDataOffset) + baseOffset;
  }
  return notes;
}

InstrumentNotes readNotes(Tessaly::FileReader& file, std::uint32_t baseOffset) {
  const NoteEntries entries = walkDirectory(file, baseOffset);
  InstrumentNotes notes;
  notes.plate = terminatedText(file, entries.plate);
  notes.well = pascalText(file, entries.well);
  notes.capillary = smallestShort(file, entries.capillary, 1);
  notes.signalToNoise = smallestShort(file, entries.signalToNoise, channelCount);
  notes.instrument = pascalText(file, entries.instrument);
  notes.runDate = dateText(file, entries.runDate);
  return notes;
}

}  // namespace

InstrumentNotes readInstrumentNotes(const char* path) {
  Tessaly::FileReader file;
  if (!file.open(path)) return {};
  for (const std::uint32_t baseOffset : {std::uint32_t{0}, std::uint32_t{prefixSize}}) {
    Tessaly::String magic;
    file.readTextAt(signedOffset(baseOffset), magic, nameSize);
    if (magic == ".scf") return {};
    if (magic == "ABIF") return readNotes(file, baseOffset);
  }
  return {};
}

}  // namespace Quillet
