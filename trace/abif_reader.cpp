#include "trace/abif_reader.h"

#include <algorithm>
#include <string_view>

#include "foundation/big_endian.h"
#include "trace/abif_layout.h"
#include "trace/stored_arrays.h"

namespace Quillet {

namespace {

using namespace AbifLayout;

/// The directory entries that the reader uses.
///
/// Offsets are unsigned bytes into the file; signedOffset() turns them into positions. When an
/// entry occurs more than once, the last one counts.
struct AbifDirectory {
  struct Item {
    std::uint32_t count = 0;
    std::uint32_t offset = 0;
    bool found = false;
  };

  Tessaly::String baseOrder;    // letter i names the channel that "DATA" 9 + i holds
  Item channels[channelCount];  // "DATA" 9..12
  Item bases;
  Item qualities;
  Item peaks;
  Item callerName;               // its first byte is a length
  std::uint32_t lastNumber = 0;  // number of the last entry; for a channel in use its index 0..3

  std::uint32_t pointCount() const { return channels[0].count; }
};

/// The offset as a file position. Offsets are added modulo 2^32; from 2^31 on the position is
/// negative.
std::int32_t signedOffset(std::uint32_t offset) { return static_cast<std::int32_t>(offset); }

/// Reads the directory of an ABIF file, entry by entry. Each operation is false when the file ends
/// before a value that it needs.
class DirectoryWalk {
 public:
  DirectoryWalk(Tessaly::FileReader& file, std::uint32_t baseOffset, AbifDirectory& directory)
      : file_(file), baseOffset_(baseOffset), directory_(directory) {}

  bool readAll() {
    std::uint16_t entrySize = 0;
    std::uint32_t entryCount = 0;
    std::uint32_t directoryOffset = 0;
    if (!file_.readUInt16At(signedOffset(baseOffset_ + headerEntrySize), entrySize) ||
        !file_.readUInt32At(signedOffset(baseOffset_ + headerEntryCount), entryCount) ||
        !file_.readUInt32At(signedOffset(baseOffset_ + headerDirectoryOffset), directoryOffset)) {
      return false;
    }

    // With an entry size of 0 all entries are the same one. Any other walk stops at the end of the
    // file.
    if (entrySize == 0) entryCount = std::min(entryCount, 1u);
    entryOffset_ = directoryOffset + baseOffset_;
    for (std::uint32_t index = 0; index < entryCount; ++index, entryOffset_ += entrySize) {
      if (!readEntry()) return false;
    }
    return true;
  }

 private:
  static constexpr std::int32_t headSize = entryNumber + 4;  // bytes of an entry's name and number
  static_assert(entryName == 0 && entryNumber == nameSize);

  bool readEntry() {
    // Deliberate: once the last block of the file is used up, no name can be read at any position.
    if (file_.hasEnded()) return false;
    char head[headSize];  // name and number in one read; most entries are then skipped
    if (file_.readBytesAt(signedOffset(entryOffset_ + entryName), head, headSize) < headSize) {
      return false;
    }
    const std::string_view name(head, nameSize);
    const std::uint32_t number = Tessaly::bigEndian32(head + entryNumber);

    directory_.lastNumber = number;
    if (number >= firstChannelNumber && number <= lastChannelNumber && name == "DATA") {
      return readChannel(number - firstChannelNumber);
    }
    // Deliberate: the edited calls (1) are taken, not the base caller's own (2).
    if (number == callNumber) return readCallEntry(name);
    // Deliberate: offsets of the calls and the caller name count from the start of the file, even
    // after a prefix.
    if (number == callerNameNumber && name == "SPAC") return readItem(directory_.callerName, 0);
    return true;
  }

  bool readCallEntry(std::string_view name) {
    if (name == "FWO_") return readBaseOrder();
    if (name == "PBAS") return readItem(directory_.bases, 0);
    if (name == "PCON") return readItem(directory_.qualities, 0);
    if (name == "PLOC") return readItem(directory_.peaks, 0);
    return true;
  }

  bool readBaseOrder() {
    std::uint32_t dataSize = 0;
    if (!readField(entryDataSize, dataSize)) return false;
    // The result is not needed: faultOf() refuses an order that is too short. When the last block
    // of the file is used up, the read fails, and the order of an earlier "FWO_" stays.
    if (dataSize == baseOrderSize) {
      file_.readTextAt(signedOffset(entryOffset_ + entryDataOffset), directory_.baseOrder,
                       baseOrderSize);
    }
    return true;
  }

  bool readChannel(std::uint32_t index) {
    std::uint32_t dataSize = 0;
    if (!readField(entryDataSize, dataSize)) return false;
    if (dataSize <= 4) return true;  // so little is stored in the entry itself: no trace
    directory_.lastNumber = index;
    return readItem(directory_.channels[index], baseOffset_);
  }

  /// Deliberate: the field is read as an offset, even when the data fits into the field itself.
  bool readItem(AbifDirectory::Item& item, std::uint32_t addedOffset) {
    if (!readField(entryElementCount, item.count) || !readField(entryDataOffset, item.offset)) {
      return false;
    }
    item.offset += addedOffset;
    item.found = true;
    return true;
  }

  bool readField(std::uint32_t fieldOffset, std::uint32_t& value) {
    return file_.readUInt32At(signedOffset(entryOffset_ + fieldOffset), value);
  }

  Tessaly::FileReader& file_;
  const std::uint32_t baseOffset_;
  AbifDirectory& directory_;
  std::uint32_t entryOffset_ = 0;
};

/// The first fault that the directory alone shows.
TraceFault faultOf(const AbifDirectory& directory) {
  const Tessaly::String& order = directory.baseOrder;
  if (order.length() != baseOrderSize) return TraceFault::noBaseOrder;
  for (std::int32_t index = 0; index < baseOrderSize; ++index) {
    if (channelOf(order[index]) == noChannel) return TraceFault::noBaseOrder;
  }

  for (const AbifDirectory::Item& channel : directory.channels) {
    if (!channel.found) return TraceFault::noAnalysedChannels;
  }
  const std::uint32_t pointCount = directory.pointCount();
  if (pointCount == 0) return TraceFault::noAnalysedChannels;
  // Deliberate: only one channel's length is compared with the first one's: that of the channel
  // whose index the last entry's number happens to equal.
  const std::uint32_t compared = directory.lastNumber;
  if (compared < channelCount && directory.channels[compared].count != pointCount) {
    return directory.channels[compared].count == 0 ? TraceFault::noAnalysedChannels
                                                   : TraceFault::channelLengthsDiffer;
  }

  const std::uint32_t baseCount = directory.bases.count;
  const bool callsAgree = baseCount == 0 || (directory.qualities.count == baseCount &&
                                             directory.peaks.count == baseCount);
  return callsAgree ? TraceFault::none : TraceFault::callCountsDiffer;
}

/// Whether every claimed count passes isBacked().
bool backsClaims(const Tessaly::FileReader& file, const AbifDirectory& directory) {
  const std::uint32_t pointCount = directory.pointCount();
  const std::int64_t channelSize = std::int64_t{2} * pointCount;  // bytes
  for (const AbifDirectory::Item& channel : directory.channels) {
    if (!isBacked(file, pointCount, signedOffset(channel.offset), channelSize)) return false;
  }

  // A seek to a negative offset fails; reading then goes on after what was read last.
  const std::uint32_t baseCount = directory.bases.count;
  std::int64_t position = signedOffset(directory.channels[channelCount - 1].offset) + channelSize;
  const auto isRunBacked = [&](const AbifDirectory::Item& item, std::int64_t byteCount) {
    const std::int64_t offset = signedOffset(item.offset);
    const std::int64_t start = offset >= 0 ? offset : position;
    position = start + byteCount;
    return isBacked(file, baseCount, start, byteCount);
  };
  return isRunBacked(directory.bases, baseCount) && isRunBacked(directory.qualities, baseCount) &&
         isRunBacked(directory.peaks, std::int64_t{2} * baseCount);
}

/// Reads the samples of all channels; false when the offset of one is negative.
bool readChannels(Tessaly::FileReader& file, const AbifDirectory& directory, Channels& channels) {
  channels = Channels(directory.pointCount());
  // Deliberate: an order that names one letter twice leaves the missing channel all zeros.
  for (int channel = 0; channel < channelCount; ++channel) {
    if (!directory.baseOrder.contains(channelLetters[channel])) {
      std::ranges::fill(channels[channel], std::uint16_t{0});
    }
  }
  for (std::int32_t index = 0; index < channelCount; ++index) {
    if (!file.seek(signedOffset(directory.channels[index].offset))) return false;
    const auto samples = channels[channelOf(directory.baseOrder[index])];
    readArray(file, samples.data(), samples.size());
  }
  return true;
}

BaseCalls readCalls(Tessaly::FileReader& file, const AbifDirectory& directory) {
  BaseCalls calls(directory.bases.count);
  const auto stored = std::make_unique_for_overwrite<std::uint16_t[]>(calls.count);

  // Deliberate: a failed seek is ignored; reading goes on at the current position.
  file.seek(signedOffset(directory.bases.offset));
  readArray(file, calls.bases.get(), calls.count);
  file.seek(signedOffset(directory.qualities.offset));
  readArray(file, calls.qualities.get(), calls.count);
  file.seek(signedOffset(directory.peaks.offset));
  readArray(file, stored.get(), calls.count);

  std::copy_n(stored.get(), calls.count, calls.peaks.get());
  calls.peaks[calls.count] = directory.pointCount();
  return calls;
}

Tessaly::String readCallerName(Tessaly::FileReader& file, const AbifDirectory::Item& item) {
  Tessaly::String name;
  if (!item.found) return name;
  file.seek(signedOffset(item.offset + 1));  // past the length byte
  // Text lengths are signed: a count of 0, of 1 or above 2^31 gives an empty name.
  file.readText(name, static_cast<std::int32_t>(item.count - 1));
  return name;
}

}  // namespace

TraceContent readAbif(Tessaly::FileReader& file, std::uint32_t baseOffset) {
  AbifDirectory directory;
  if (!DirectoryWalk(file, baseOffset, directory).readAll()) {
    return TraceContent(TraceFault::directoryCut);
  }
  TraceContent content(faultOf(directory));
  if (content.fault != TraceFault::none) return content;
  if (!backsClaims(file, directory) || !readChannels(file, directory, content.channels)) {
    return TraceContent(TraceFault::dataBeyondFile);
  }
  if (directory.bases.count > 0) {
    content.calls = readCalls(file, directory);
    content.callerName = readCallerName(file, directory.callerName);
  }
  return content;
}

}  // namespace Quillet
