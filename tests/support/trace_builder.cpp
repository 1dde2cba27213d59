#include "tests/support/trace_builder.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

const std::string letters = "ACGT";

/// Stores the lowest `size` bytes of `value`, most significant byte first.
void put(std::string& bytes, std::size_t at, std::uint32_t value, std::size_t size) {
  if (bytes.size() < at + size) bytes.resize(at + size, '\0');
  for (std::size_t i = 0; i < size; ++i) {
    bytes[at + i] = static_cast<char>((value >> (8 * (size - 1 - i))) & 0xFF);
  }
}

void append(std::string& bytes, std::uint32_t value, std::size_t size) {
  put(bytes, bytes.size(), value, size);
}

std::string numbers(const std::vector<int>& values, std::size_t size) {
  std::string bytes;
  for (const int value : values) append(bytes, static_cast<std::uint32_t>(value), size);
  return bytes;
}

std::vector<int> rising(int first, int step, std::size_t count) {
  std::vector<int> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = first + step * static_cast<int>(i);
  return values;
}

constexpr std::size_t barePointCount = 12;

}  // namespace

AbifBuilder& AbifBuilder::without(const std::string& name, std::uint32_t number) {
  edits_.push_back([=](Entries& entries) {
    std::erase_if(entries, [&](const Entry& e) { return e.name == name && e.number == number; });
  });
  return *this;
}

AbifBuilder& AbifBuilder::entry(const std::string& name, std::uint32_t number,
                                const std::string& data, std::uint32_t elementSize) {
  Entry added;
  added.name = name;
  added.number = number;
  added.elementSize = elementSize;
  added.data = data;
  added.inEntry = data.size() <= 4;
  edits_.push_back([=](Entries& entries) { entries.push_back(added); });
  return *this;
}

AbifBuilder& AbifBuilder::otherEntries(int count) {
  static const std::array<const char*, 8> names{"CMNT", "DSam", "LANE", "PDMF",
                                                "RUND", "SMPL", "TUBE", "User"};
  edits_.push_back([=](Entries& entries) {
    Entries others;
    for (int i = 0; i < count; ++i) {
      Entry other;
      other.name = names[static_cast<std::size_t>(i) % names.size()];
      other.number = 1 + static_cast<std::uint32_t>(i / 8);
      other.data = std::string(static_cast<std::size_t>(i % 40 + 1), 'x');
      other.inEntry = other.data.size() <= 4;
      others.push_back(other);
    }
    entries.insert(entries.begin(), others.begin(), others.end());
  });
  return *this;
}

AbifBuilder& AbifBuilder::last(const std::string& name, std::uint32_t number) {
  edits_.push_back([=](Entries& entries) {
    std::stable_partition(entries.begin(), entries.end(),
                          [&](const Entry& e) { return e.name != name || e.number != number; });
  });
  return *this;
}

AbifBuilder& AbifBuilder::change(const std::string& name, std::uint32_t number,
                                 const std::function<void(Entry&)>& edit) {
  edits_.push_back([=](Entries& entries) {
    const auto found = std::find_if(entries.rbegin(), entries.rend(), [&](const Entry& e) {
      return e.name == name && e.number == number;
    });
    if (found != entries.rend()) edit(*found);
  });
  return *this;
}

AbifBuilder& AbifBuilder::type(const std::string& name, std::uint32_t number, std::uint16_t value) {
  return change(name, number, [=](Entry& e) { e.type = value; });
}

AbifBuilder& AbifBuilder::count(const std::string& name, std::uint32_t number,
                                std::uint32_t value) {
  return change(name, number, [=](Entry& e) { e.count = value; });
}

AbifBuilder& AbifBuilder::dataSize(const std::string& name, std::uint32_t number,
                                   std::uint32_t value) {
  return change(name, number, [=](Entry& e) { e.dataSize = value; });
}

AbifBuilder& AbifBuilder::dataOffset(const std::string& name, std::uint32_t number,
                                     std::uint32_t value) {
  return change(name, number, [=](Entry& e) { e.dataOffset = value; });
}

std::string AbifBuilder::channelData(std::size_t index) const {
  const char letter = index < baseOrder_.size() ? baseOrder_[index] : '?';
  const std::size_t channel = letters.find(letter);
  const auto given = channels_.find(letter);
  if (given != channels_.end()) return numbers(given->second, 2);
  const bool plain =
      channel != std::string::npos && std::count(baseOrder_.begin(), baseOrder_.end(), letter) == 1;
  const std::size_t hundreds = plain ? 1 + channel : 5 + index;
  return numbers(rising(static_cast<int>(100 * hundreds), 1, barePointCount), 2);
}

AbifBuilder::Entries AbifBuilder::entries() const {
  const std::size_t n = bases_.size();
  Entries all;
  const auto add = [&](const char* name, std::uint32_t number, const std::string& data,
                       std::uint32_t elementSize) {
    Entry added;
    added.name = name;
    added.number = number;
    added.elementSize = elementSize;
    added.data = data;
    all.push_back(added);
  };
  for (std::uint32_t i = 0; i < 4; ++i) add("DATA", 9 + i, channelData(i), 2);
  add("FWO_", 1, baseOrder_, 1);
  all.back().inEntry = true;
  add("PBAS", 1, bases_, 1);
  add("PBAS", 2, std::string(n, 'N'), 1);
  add("PCON", 1, numbers(qualities_.value_or(std::vector<int>(n, 40)), 1), 1);
  add("PCON", 2, std::string(n, '\1'), 1);
  add("PLOC", 1, numbers(peaks_.value_or(rising(1, 3, n)), 2), 2);
  add("PLOC", 2, std::string(2 * n, '\0'), 2);
  add("SPAC", 2, static_cast<char>(callerName_.size()) + callerName_, 1);
  for (const auto& edit : edits_) edit(all);
  return all;
}

std::uint32_t AbifBuilder::storedOffset(const Entry& entry, std::size_t offsetInAbif) const {
  const bool fromFileStart =
      !callOffsetsFromPrefix_ && (entry.name == "PBAS" || entry.name == "PCON" ||
                                  entry.name == "PLOC" || entry.name == "SPAC");
  const std::size_t added = fromFileStart ? static_cast<std::size_t>(prefix_) : 0;
  return static_cast<std::uint32_t>(offsetInAbif + added);
}

void AbifBuilder::putEntry(std::string& bytes, std::size_t at, const Entry& entry,
                           std::uint32_t offset) const {
  const auto size = static_cast<std::uint32_t>(entry.data.size());
  std::string name = entry.name;
  name.resize(4, ' ');
  bytes.replace(at, 4, name);
  put(bytes, at + 4, entry.number, 4);
  put(bytes, at + 8, entry.type.value_or(entry.elementSize == 2 ? 4 : 2), 2);
  put(bytes, at + 10, entry.elementSize, 2);
  put(bytes, at + 12, entry.count.value_or(size / entry.elementSize), 4);
  put(bytes, at + 16, entry.dataSize.value_or(size), 4);
  if (entry.inEntry && !entry.dataOffset) {
    std::string inside = entry.data;
    inside.resize(4, '\0');
    bytes.replace(at + 20, 4, inside);
  } else {
    put(bytes, at + 20, entry.dataOffset.value_or(offset), 4);
  }
}

void AbifBuilder::putHeader(std::string& bytes, std::size_t entryCount,
                            std::size_t directoryOffset) const {
  const auto count = static_cast<std::uint32_t>(entryCount);
  bytes.replace(0, 4, "ABIF");
  put(bytes, 4, 101, 2);  // version
  bytes.replace(6, 4, "tdir");
  put(bytes, 10, 1, 4);
  put(bytes, 14, 1023, 2);  // element type of a directory
  put(bytes, 16, headerStride_.value_or(static_cast<std::uint16_t>(stride_)), 2);
  put(bytes, 18, headerEntryCount_.value_or(count), 4);
  put(bytes, 22, count * static_cast<std::uint32_t>(stride_), 4);
  put(bytes, 26, headerDirectoryOffset_.value_or(static_cast<std::uint32_t>(directoryOffset)), 4);
}

std::string AbifBuilder::build() const {
  const Entries all = entries();
  const std::size_t headerSize = 128;
  const std::size_t directorySize = all.size() * static_cast<std::size_t>(stride_);
  std::string bytes(headerSize + (directoryFirst_ ? directorySize : 0), '\0');

  std::vector<std::uint32_t> offsets;
  for (const Entry& entry : all) {
    offsets.push_back(storedOffset(entry, bytes.size()));
    if (!entry.inEntry) bytes += entry.data;
  }

  const std::size_t directoryOffset = directoryFirst_ ? headerSize : bytes.size();
  if (!directoryFirst_) bytes.resize(bytes.size() + directorySize, '\0');
  for (std::size_t i = 0; i < all.size(); ++i) {
    putEntry(bytes, directoryOffset + i * static_cast<std::size_t>(stride_), all[i], offsets[i]);
  }
  putHeader(bytes, all.size(), directoryOffset);

  bytes.insert(0, static_cast<std::size_t>(prefix_), '#');
  if (size_ && *size_ < bytes.size()) bytes.resize(*size_);
  return bytes;
}

ScfBuilder& ScfBuilder::header(std::size_t offset, std::uint32_t value) {
  headerFields_.emplace_back(offset, value);
  return *this;
}

/// The longest given channel decides; zeros follow the samples of a shorter one.
std::size_t ScfBuilder::pointCount() const {
  std::size_t longest = 0;
  for (const auto& [letter, samples] : channels_) longest = std::max(longest, samples.size());
  for (const auto& [letter, values] : stored_) longest = std::max(longest, values.size());
  return channels_.empty() && stored_.empty() ? barePointCount : longest;
}

/// The values of one channel as the file stores them: samples, or their second differences.
std::vector<int> ScfBuilder::stored(char letter) const {
  const auto asStored = stored_.find(letter);
  std::vector<int> values;
  if (asStored != stored_.end()) {
    values = asStored->second;
    values.resize(pointCount());
    return values;
  }
  const auto given = channels_.find(letter);
  if (given != channels_.end()) {
    values = given->second;
  } else if (channels_.empty() && stored_.empty()) {
    values = rising(10 + 10 * static_cast<int>(letters.find(letter)), 1, barePointCount);
  }
  values.resize(pointCount());
  if (!isVersion3()) return values;
  for (int pass = 0; pass < 2; ++pass) {
    for (std::size_t i = values.size(); i-- > 1;) values[i] -= values[i - 1];
  }
  return values;
}

void ScfBuilder::putSample(std::string& bytes, int value) const {
  append(bytes, static_cast<std::uint32_t>(value), sampleSize_ == 1 ? 1 : 2);
}

std::string ScfBuilder::sampleBytes() const {
  std::vector<std::vector<int>> channels;
  for (const char letter : letters) channels.push_back(stored(letter));
  std::string bytes;
  if (isVersion3()) {
    for (const auto& values : channels) {
      for (const int value : values) putSample(bytes, value);
    }
  } else {
    for (std::size_t i = 0; i < pointCount(); ++i) {
      for (const auto& values : channels) putSample(bytes, values[i]);
    }
  }
  return bytes;
}

std::uint32_t ScfBuilder::peak(std::size_t index) const {
  if (peaks_) return (*peaks_)[index];
  return 1 + 3 * static_cast<std::uint32_t>(index);
}

char ScfBuilder::probability(char letter, std::size_t index) const {
  const auto given = probabilities_.find(letter);
  if (given != probabilities_.end()) return static_cast<char>(given->second[index]);
  return static_cast<char>(11 + letters.find(letter));
}

std::string ScfBuilder::baseBytes() const {
  std::string bytes;
  if (isVersion3()) {
    for (std::size_t i = 0; i < bases_.size(); ++i) append(bytes, peak(i), 4);
    for (const char letter : letters) {
      for (std::size_t i = 0; i < bases_.size(); ++i) bytes += probability(letter, i);
    }
    bytes += bases_;
    bytes.append(3 * bases_.size(), '\0');  // spare
  } else {
    for (std::size_t i = 0; i < bases_.size(); ++i) {
      append(bytes, peak(i), 4);
      for (const char letter : letters) bytes += probability(letter, i);
      bytes += bases_[i];
      bytes.append(3, '\0');  // spare
    }
  }
  return bytes;
}

std::size_t ScfBuilder::basesOffset() const { return samplesOffset() + sampleBytes().size(); }

std::size_t ScfBuilder::commentsOffset() const { return basesOffset() + 12 * bases_.size(); }

std::string ScfBuilder::build() const {
  std::string bytes(128, '\0');
  bytes.replace(0, 4, ".scf");
  put(bytes, 4, static_cast<std::uint32_t>(pointCount()), 4);
  put(bytes, 8, static_cast<std::uint32_t>(samplesOffset()), 4);
  put(bytes, 12, static_cast<std::uint32_t>(bases_.size()), 4);
  put(bytes, 24, static_cast<std::uint32_t>(basesOffset()), 4);
  put(bytes, 28, static_cast<std::uint32_t>(comments_.size()), 4);
  put(bytes, 32, static_cast<std::uint32_t>(commentsOffset()), 4);
  bytes.replace(36, 4, version_);
  put(bytes, 40, sampleSize_, 4);
  for (const auto& [offset, value] : headerFields_) put(bytes, offset, value, 4);
  bytes += sampleBytes() + baseBytes() + comments_;
  if (size_ && *size_ < bytes.size()) bytes.resize(*size_);
  return bytes;
}
