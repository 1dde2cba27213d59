#include <algorithm>
#include <limits>
#include <string_view>

#include "foundation/big_endian.h"
#include "foundation/channels.h"
#include "trace/abif_layout.h"
#include "trace/trace_file.h"

namespace Quillet {

/// What the directory of one ABIF file says about the entries that are used.
///
/// Offsets are bytes into the file, still unsigned: see signedOffset(). Of an entry that occurs
/// more than once the last occurrence counts.
struct AbifDirectory {
  struct Item {
    std::uint32_t count = 0;
    std::uint32_t offset = 0;
    bool found = false;
  };

  Tessaly::String baseOrder;  // letter i names the channel that "DATA" 9 + i holds
  Item channels[4];           // "DATA" 9..12
  Item bases;
  Item qualities;
  Item peaks;
  Item callerName;               // its first byte is a length
  std::uint32_t lastNumber = 0;  // of the last entry; reduced by 9 for a channel that is used

  std::uint32_t pointCount() const { return channels[0].count; }
};

namespace {

using namespace AbifLayout;

// Offsets are added up modulo 2^32; the result is a position, and of 2^31 and above a negative one.
std::int32_t signedOffset(std::uint32_t offset) { return static_cast<std::int32_t>(offset); }

// Walks the directory of an ABIF file. Each step is false when something it needs can not be read.
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

    // Entries of size 0 are all the same one. Any other walk ends where the file does.
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
    // Deliberate: a name is unreadable, wherever it stands, once the file's last block is used up.
    if (file_.hasEnded()) return false;
    char head[headSize];  // name and number in one read: most entries are passed over after it
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
    // Deliberate: these offsets count from the start of the file, whatever stands before "ABIF".
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
    if (dataSize == baseOrderSize) {
      file_.readTextAt(signedOffset(entryOffset_ + entryDataOffset), directory_.baseOrder,
                       baseOrderSize);
    }
    // A missing letter shows in the length, unless an earlier "FWO_" was read: where the file is
    // known to end before the letters, the read is refused and leaves the earlier order.
    return true;
  }

  bool readChannel(std::uint32_t index) {
    std::uint32_t dataSize = 0;
    if (!readField(entryDataSize, dataSize)) return false;
    if (dataSize <= 4) return true;  // as much as an entry holds itself: no trace
    directory_.lastNumber = index;
    return readItem(directory_.channels[index], baseOffset_);
  }

  // Deliberate: the field is always an offset, also for data short enough to be stored in it.
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

bool isConsistent(const AbifDirectory& directory) {
  const Tessaly::String& order = directory.baseOrder;
  if (order.length() != baseOrderSize) return false;
  for (std::int32_t index = 0; index < baseOrderSize; ++index) {
    if (channelOf(order[index]) == noChannel) return false;
  }

  const std::uint32_t pointCount = directory.pointCount();
  if (pointCount == 0) return false;
  // Deliberate: only the channel that the last entry's number happens to name is compared.
  const std::uint32_t compared = directory.lastNumber;
  if (compared < 4 && directory.channels[compared].count != pointCount) return false;
  for (const AbifDirectory::Item& channel : directory.channels) {
    if (!channel.found) return false;
  }

  const std::uint32_t baseCount = directory.bases.count;
  return baseCount == 0 ||
         (directory.qualities.count == baseCount && directory.peaks.count == baseCount);
}

}  // namespace

bool TraceFile::readAbif(std::uint32_t baseOffset) {
  baseCount_ = 0;
  callerName_.clear();
  AbifDirectory directory;
  if (!DirectoryWalk(*this, baseOffset, directory).readAll()) return false;
  if (!isConsistent(directory) || !isBacked(directory)) return false;
  if (!readAbifChannels(directory)) return false;
  if (directory.bases.count > 0) readAbifCalls(directory);
  return true;
}

bool TraceFile::isBacked(const AbifDirectory& directory) const {
  const std::uint32_t pointCount = directory.pointCount();
  const std::int64_t channelSize = std::int64_t{2} * pointCount;  // bytes
  for (const AbifDirectory::Item& channel : directory.channels) {
    if (!isBacked(pointCount, signedOffset(channel.offset), channelSize)) return false;
  }

  // A move to a negative offset leaves the reader behind what it read last.
  const std::uint32_t baseCount = directory.bases.count;
  std::int64_t standing = signedOffset(directory.channels[3].offset) + channelSize;
  const auto isRunBacked = [&](const AbifDirectory::Item& item, std::int64_t byteCount) {
    const std::int64_t offset = signedOffset(item.offset);
    if (offset >= 0) standing = offset;
    const std::int64_t start = standing;
    standing += byteCount;
    return isBacked(baseCount, start, byteCount);
  };
  return isRunBacked(directory.bases, baseCount) && isRunBacked(directory.qualities, baseCount) &&
         isRunBacked(directory.peaks, std::int64_t{2} * baseCount);
}

bool TraceFile::readAbifChannels(const AbifDirectory& directory) {
  pointCount_ = directory.pointCount();
  // Deliberate: an order that names one letter twice leaves the channel it misses all zeros.
  for (const char letter : {'A', 'C', 'G', 'T'}) {
    channels_[channelOf(letter)] =
        directory.baseOrder.contains(letter)
            ? std::make_unique_for_overwrite<std::uint16_t[]>(pointCount_)
            : std::make_unique<std::uint16_t[]>(pointCount_);
  }
  for (std::int32_t index = 0; index < 4; ++index) {
    if (!seek(signedOffset(directory.channels[index].offset))) return false;
    fill(channels_[channelOf(directory.baseOrder[index])].get(), pointCount_);
  }
  return true;
}

void TraceFile::readAbifCalls(const AbifDirectory& directory) {
  baseCount_ = directory.bases.count;
  bases_ = std::make_unique_for_overwrite<char[]>(baseCount_);
  qualities_ = std::make_unique_for_overwrite<char[]>(baseCount_);
  const auto stored = std::make_unique_for_overwrite<std::uint16_t[]>(baseCount_);

  // Deliberate: a move that fails is no failure, reading goes on from where the reader stands.
  seek(signedOffset(directory.bases.offset));
  fill(bases_.get(), baseCount_);
  seek(signedOffset(directory.qualities.offset));
  fill(qualities_.get(), baseCount_);
  seek(signedOffset(directory.peaks.offset));
  fill(stored.get(), baseCount_);

  if (directory.callerName.count > 1) {
    // Texts count in signed 32 bits. One that is longer than the file ends with the file.
    constexpr std::uint32_t longest = std::numeric_limits<std::int32_t>::max();
    const std::uint32_t length = std::min(directory.callerName.count - 1, longest);
    seek(signedOffset(directory.callerName.offset + 1));  // past the length byte
    readText(callerName_, static_cast<std::int32_t>(length));
  }

  peaks_ = std::make_unique_for_overwrite<std::uint32_t[]>(std::size_t{baseCount_} + 1);
  std::copy_n(stored.get(), baseCount_, peaks_.get());
  peaks_[baseCount_] = pointCount_;
}

}  // namespace Quillet
