#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/big_endian.h"
#include "foundation/channels.h"
#include "foundation/scf_layout.h"
#include "trace/trace_file.h"

namespace Quillet {

using namespace ScfLayout;

/// The header fields that are used; what the file does not hold is zero.
struct ScfHeader {
  std::uint32_t sampleCount = 0;
  std::uint32_t baseCount = 0;
  std::int32_t samplesOffset = 0;  // bytes from the start of the file; negative from 2^31 on
  std::int32_t basesOffset = 0;
  std::int32_t commentsOffset = 0;
  std::int32_t sampleSize = 2;  // bytes, 1 or 2
  bool interleaved = true;      // version 2 layout: point by point, base by base
};

namespace {

// Bytes of the header up to the last field that is used.
constexpr std::int32_t headerBytesRead = headerSampleSize + 4;

// Bytes of a base in the version 3 layout: the peak, four probabilities, the letter.
constexpr std::int32_t splitBaseSize = 4 + 4 + 1;

// Records are read in runs of this many bytes, whole records of 4, 8 and 12 bytes alike.
constexpr std::int32_t chunkSize = 12288;

// Reads up to `wanted` bytes and puts zeros behind those that are there.
std::int32_t readChunk(Tessaly::FileReader& file, unsigned char* chunk, std::int32_t wanted) {
  const std::int32_t held = file.readBytes(chunk, wanted);
  std::fill(chunk + held, chunk + wanted, static_cast<unsigned char>(0));
  return held;
}

// A value of `size` bytes that the file can not complete is zero: clears what there is of it.
void dropPart(unsigned char* chunk, std::int32_t held, std::int32_t size) {
  const std::int32_t whole = held / size * size;
  std::fill(chunk + whole, chunk + held, static_cast<unsigned char>(0));
}

ScfHeader readHeader(Tessaly::FileReader& file) {
  std::array<unsigned char, headerBytesRead> bytes;
  file.seek(0);
  dropPart(bytes.data(), readChunk(file, bytes.data(), headerBytesRead), 4);

  const auto number = [&](std::int32_t offset) {
    return Tessaly::bigEndian32(bytes.data() + offset);
  };
  const auto offset = [&](std::int32_t at) { return static_cast<std::int32_t>(number(at)); };
  ScfHeader header;
  header.sampleCount = number(headerSampleCount);
  header.baseCount = number(headerBaseCount);
  header.samplesOffset = offset(headerSamplesOffset);
  header.basesOffset = offset(headerBasesOffset);
  header.commentsOffset = offset(headerCommentsOffset);
  header.sampleSize = number(headerSampleSize) == 1 ? 1 : 2;
  // Deliberate: the version's first character counts as signed, so one of 128 and above is old, as
  // is one that the file does not hold.
  header.interleaved = static_cast<signed char>(bytes[headerVersion]) <= '2';
  return header;
}

// Version 3 samples are stored as second differences: the running sums of their running sums.
class SampleSum {
 public:
  // Both sums wrap modulo 2^16. The low bytes are those of sums modulo 2^8.
  std::uint16_t next(std::uint16_t stored) {
    slope_ = static_cast<std::uint16_t>(slope_ + stored);
    sample_ = static_cast<std::uint16_t>(sample_ + slope_);
    return sample_;
  }

 private:
  std::uint16_t slope_ = 0;
  std::uint16_t sample_ = 0;
};

}  // namespace

bool TraceFile::readScf() {
  callerName_.clear();
  const ScfHeader header = readHeader(*this);
  if (!isBacked(header)) return false;

  pointCount_ = header.sampleCount;
  baseCount_ = header.baseCount;
  for (auto& channel : channels_) {
    channel = std::make_unique_for_overwrite<std::uint16_t[]>(pointCount_);
  }
  bases_ = std::make_unique_for_overwrite<char[]>(baseCount_);
  qualities_ = std::make_unique_for_overwrite<char[]>(baseCount_);
  peaks_ = std::make_unique_for_overwrite<std::uint32_t[]>(std::size_t{baseCount_} + 1);

  // Moves that fail are no failure: reading goes on from where the reader stands.
  seek(header.samplesOffset);
  if (header.interleaved) {
    readScfSamples2(header.sampleSize);
  } else {
    readScfSamples3(header.sampleSize);
  }
  seek(header.basesOffset);
  if (header.interleaved) {
    readScfBases2();
  } else {
    readScfBases3();
  }
  peaks_[baseCount_] = pointCount_;
  seek(header.commentsOffset);
  readScfComments();
  return true;
}

bool TraceFile::isBacked(const ScfHeader& header) const {
  // A move to a negative offset leaves the reader behind what it read last.
  const std::int64_t samplesStart =
      header.samplesOffset >= 0 ? header.samplesOffset : headerBytesRead;
  const std::int64_t samplesSize = std::int64_t{4} * header.sampleCount * header.sampleSize;
  const std::int64_t basesStart =
      header.basesOffset >= 0 ? header.basesOffset : samplesStart + samplesSize;
  const std::int64_t basesSize =
      std::int64_t{header.baseCount} * (header.interleaved ? baseRecordSize : splitBaseSize);
  return isBacked(header.sampleCount, samplesStart, samplesSize) &&
         isBacked(header.baseCount, basesStart, basesSize);
}

void TraceFile::readScfSamples2(std::int32_t sampleSize) {
  unsigned char chunk[chunkSize];
  const std::int32_t recordSize = 4 * sampleSize;
  const std::uint32_t chunkRecords = static_cast<std::uint32_t>(chunkSize / recordSize);
  std::uint32_t count = 0;
  for (std::uint32_t first = 0; first < pointCount_; first += count) {
    count = std::min(chunkRecords, pointCount_ - first);
    const std::int32_t held =
        readChunk(*this, chunk, static_cast<std::int32_t>(count) * recordSize);
    dropPart(chunk, held, sampleSize);
    for (std::uint32_t index = 0; index < 4; ++index) {
      std::uint16_t* samples = channels_[index].get() + first;
      if (sampleSize == 1) {
        for (std::uint32_t i = 0; i < count; ++i) samples[i] = chunk[4 * i + index];
      } else {
        for (std::size_t i = 0; i < count; ++i) {
          samples[i] = Tessaly::bigEndian16(chunk + 8 * i + std::size_t{2} * index);
        }
      }
    }
  }
}

void TraceFile::readScfBases2() {
  unsigned char chunk[chunkSize];
  constexpr std::uint32_t chunkRecords = chunkSize / baseRecordSize;
  std::uint32_t count = 0;
  for (std::uint32_t first = 0; first < baseCount_; first += count) {
    count = std::min(chunkRecords, baseCount_ - first);
    const std::int32_t held =
        readChunk(*this, chunk, static_cast<std::int32_t>(count) * baseRecordSize);
    if (held % baseRecordSize < baseRecordProbabilities) dropPart(chunk, held, baseRecordSize);
    for (std::uint32_t i = 0; i < count; ++i) {
      const unsigned char* record = chunk + std::size_t{i} * baseRecordSize;
      const char letter = static_cast<char>(record[baseRecordBase]);
      const int channel = channelOf(letter);
      peaks_[first + i] = Tessaly::bigEndian32(record + baseRecordPeak);
      bases_[first + i] = letter;
      qualities_[first + i] = channel == noChannel
                                  ? '\0'
                                  : static_cast<char>(record[baseRecordProbabilities + channel]);
    }
  }
}

void TraceFile::readScfSamples3(std::int32_t sampleSize) {
  for (auto& channel : channels_) {
    std::uint16_t* samples = channel.get();
    SampleSum sum;
    if (sampleSize == 2) {
      fill(samples, pointCount_);
      for (std::uint32_t i = 0; i < pointCount_; ++i) samples[i] = sum.next(samples[i]);
      continue;
    }
    unsigned char chunk[chunkSize];
    std::uint32_t count = 0;
    for (std::uint32_t first = 0; first < pointCount_; first += count) {
      count = std::min(std::uint32_t{chunkSize}, pointCount_ - first);
      readChunk(*this, chunk, static_cast<std::int32_t>(count));
      for (std::uint32_t i = 0; i < count; ++i) samples[first + i] = sum.next(chunk[i]) & 0xFF;
    }
  }
}

void TraceFile::readScfBases3() {
  // One run of the A probabilities, then those of C, of G and of T. What is left of a peak that the
  // file cuts lands among them, but then no letter calls for it.
  const std::size_t count = baseCount_;
  const auto probabilities = std::make_unique_for_overwrite<char[]>(4 * count);
  fill(peaks_.get(), count);
  fill(probabilities.get(), 4 * count);
  fill(bases_.get(), count);
  for (std::size_t i = 0; i < count; ++i) {
    const int channel = channelOf(bases_[i]);
    qualities_[i] =
        channel == noChannel ? '\0' : probabilities[static_cast<std::size_t>(channel) * count + i];
  }
}

// Deliberate: the search ends where the file does, not where the comments do. Of the lines before,
// none is kept: what follows the comments may be one endless line.
void TraceFile::readScfComments() {
  constexpr std::string_view label = "BCAL=";
  std::size_t matched = 0;  // characters at the start of the line
  for (std::int8_t character = 0; readInt8(character);) {
    if (character == label[matched]) {
      if (++matched < label.size()) continue;
      readLine(callerName_);
      return;
    }
    matched = 0;
    if (character != '\n' && !skipUntil('\n')) return;
  }
}

}  // namespace Quillet
