#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Builders of trace files. They share no code with the readers, so that the tests find an error in
// either. Without further calls each builds a small valid file; every call changes one thing.

/// Makes an ABIF file.
///
/// Bare: four channels of 12 samples, sample i of A being 100 + i, of C 200 + i, of G 300 + i, of
/// T 400 + i; base order "GATC"; bases "ACGT" with qualities 40 and peaks 1, 4, 7, 10; caller
/// "built.bcp"; calls numbered 2 that differ ("NNNN", qualities 1, peaks 0). Entries are sorted by
/// name and number, 28 bytes apart, after the data. Other bases get qualities of 40 and peaks 1, 4,
/// 7... unless these are given too. Changes of entries apply in the order of the calls, to the last
/// entry of that name and number.
class AbifBuilder {
 public:
  // Contents of the trace.
  AbifBuilder& bases(const std::string& letters) { return set(bases_, letters); }
  AbifBuilder& qualities(const std::vector<int>& values) { return set(qualities_, values); }
  AbifBuilder& peaks(const std::vector<int>& values) { return set(peaks_, values); }
  AbifBuilder& channel(char letter, const std::vector<int>& samples) {
    return set(channels_[letter], samples);
  }
  /// Four letters: the channels of "DATA" 9 to 12. If a letter occurs twice or is none of A, C, G,
  /// T, the samples of its "DATA" 9 + i rise from 500 + 100 * i.
  AbifBuilder& baseOrder(const std::string& letters) { return set(baseOrder_, letters); }
  AbifBuilder& callerName(const std::string& name) { return set(callerName_, name); }

  // Entries of the directory.
  AbifBuilder& without(const std::string& name, std::uint32_t number);
  /// Adds an entry after the others. Up to 4 bytes of data are stored in the entry itself.
  AbifBuilder& entry(const std::string& name, std::uint32_t number, const std::string& data,
                     std::uint32_t elementSize = 1);
  /// The type of an entry's elements; otherwise 4 (short) for elements of 2 bytes, 2 (char) for
  /// others.
  AbifBuilder& type(const std::string& name, std::uint32_t number, std::uint16_t value);
  /// Adds `count` entries before the others, with names and sizes like those of instruments.
  AbifBuilder& otherEntries(int count);
  AbifBuilder& last(const std::string& name, std::uint32_t number);
  AbifBuilder& count(const std::string& name, std::uint32_t number, std::uint32_t value);
  AbifBuilder& dataSize(const std::string& name, std::uint32_t number, std::uint32_t value);
  AbifBuilder& dataOffset(const std::string& name, std::uint32_t number, std::uint32_t value);

  // Positions.
  /// Puts a header of `size` bytes before "ABIF". Offsets of the directory and of "DATA" count from
  /// "ABIF", those of the calls and of the caller name from the start of the file.
  AbifBuilder& prefix(int size) { return set(prefix_, size); }
  /// With prefix(): offsets of the calls and of the caller name count from "ABIF" too.
  AbifBuilder& callOffsetsAfterPrefix() { return set(callOffsetsFromPrefix_, true); }
  /// Bytes from one entry to the next, 24 or more; at 24 each loses its unused last field.
  AbifBuilder& stride(int bytes) { return set(stride_, bytes); }
  AbifBuilder& directoryFirst() { return set(directoryFirst_, true); }
  // Header fields only: nothing moves.
  AbifBuilder& headerStride(std::uint16_t value) { return set(headerStride_, value); }
  AbifBuilder& headerEntryCount(std::uint32_t value) { return set(headerEntryCount_, value); }
  AbifBuilder& headerDirectoryOffset(std::uint32_t value) {
    return set(headerDirectoryOffset_, value);
  }
  AbifBuilder& truncatedTo(std::size_t size) { return set(size_, size); }

  std::string build() const;

 private:
  struct Entry {
    std::string name;
    std::uint32_t number = 0;
    std::uint32_t elementSize = 1;
    std::string data;
    bool inEntry = false;  // the entry's offset field holds the data
    std::optional<std::uint16_t> type;
    std::optional<std::uint32_t> count;
    std::optional<std::uint32_t> dataSize;
    std::optional<std::uint32_t> dataOffset;
  };
  using Entries = std::vector<Entry>;

  template <typename Field, typename Value>
  AbifBuilder& set(Field& field, const Value& value) {
    field = value;
    return *this;
  }
  Entries entries() const;
  std::string channelData(std::size_t index) const;
  AbifBuilder& change(const std::string& name, std::uint32_t number,
                      const std::function<void(Entry&)>& edit);
  std::uint32_t storedOffset(const Entry& entry, std::size_t offsetInAbif) const;
  void putEntry(std::string& bytes, std::size_t at, const Entry& entry, std::uint32_t offset) const;
  void putHeader(std::string& bytes, std::size_t entryCount, std::size_t directoryOffset) const;

  std::string bases_ = "ACGT";
  std::optional<std::vector<int>> qualities_;
  std::optional<std::vector<int>> peaks_;
  std::map<char, std::vector<int>> channels_;
  std::string baseOrder_ = "GATC";
  std::string callerName_ = "built.bcp";
  std::vector<std::function<void(Entries&)>> edits_;
  int prefix_ = 0;
  bool callOffsetsFromPrefix_ = false;
  int stride_ = 28;
  bool directoryFirst_ = false;
  std::optional<std::uint16_t> headerStride_;
  std::optional<std::uint32_t> headerEntryCount_;
  std::optional<std::uint32_t> headerDirectoryOffset_;
  std::optional<std::size_t> size_;
};

/// Makes an SCF file: header, samples, bases, comments.
///
/// Bare: version "3.00" with 16-bit samples; channels of 12 samples, sample i of A being 10 + i, of
/// C 20 + i, of G 30 + i, of T 40 + i; bases "ACGT" with peaks 1, 4, 7, 10; probabilities of every
/// base 11 (A), 12 (C), 13 (G), 14 (T); comments "NAME=built" and "BCAL=built.scf", a line each,
/// and a zero byte.
class ScfBuilder {
 public:
  /// Four characters. A first one of "3" or above gives the version 3 layout.
  ScfBuilder& version(const std::string& text) { return set(version_, text); }
  /// 1 gives 8-bit samples, any other value 16-bit ones.
  ScfBuilder& sampleSize(std::uint32_t bytes) { return set(sampleSize_, bytes); }
  ScfBuilder& channel(char letter, const std::vector<int>& samples) {
    return set(channels_[letter], samples);
  }
  /// The values that the file holds; no differences are formed.
  ScfBuilder& storedSamples(char letter, const std::vector<int>& values) {
    return set(stored_[letter], values);
  }
  ScfBuilder& bases(const std::string& letters) { return set(bases_, letters); }
  ScfBuilder& peaks(const std::vector<std::uint32_t>& values) { return set(peaks_, values); }
  ScfBuilder& probabilities(char letter, const std::vector<int>& values) {
    return set(probabilities_[letter], values);
  }
  ScfBuilder& comments(const std::string& text) { return set(comments_, text); }
  /// Stores a 32-bit number in the header; nothing moves.
  ScfBuilder& header(std::size_t offset, std::uint32_t value);
  ScfBuilder& truncatedTo(std::size_t size) { return set(size_, size); }

  std::string build() const;
  // Positions of the parts in the file that build() makes.
  std::size_t samplesOffset() const { return 128; }
  std::size_t basesOffset() const;
  std::size_t commentsOffset() const;

 private:
  template <typename Field, typename Value>
  ScfBuilder& set(Field& field, const Value& value) {
    field = value;
    return *this;
  }
  bool isVersion3() const { return static_cast<signed char>(version_[0]) >= '3'; }
  std::size_t pointCount() const;
  std::vector<int> stored(char letter) const;
  void putSample(std::string& bytes, int value) const;
  std::string sampleBytes() const;
  std::string baseBytes() const;
  std::uint32_t peak(std::size_t index) const;
  char probability(char letter, std::size_t index) const;

  std::string version_ = "3.00";
  std::uint32_t sampleSize_ = 2;
  std::map<char, std::vector<int>> channels_;
  std::map<char, std::vector<int>> stored_;
  std::string bases_ = "ACGT";
  std::optional<std::vector<std::uint32_t>> peaks_;
  std::map<char, std::vector<int>> probabilities_;
  std::string comments_ = std::string("NAME=built\nBCAL=built.scf\n") + '\0';
  std::vector<std::pair<std::size_t, std::uint32_t>> headerFields_;
  std::optional<std::size_t> size_;
};
