#include "trace/scf_reader.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include "foundation/big_endian.h"
#include "foundation/scf_layout.h"
#include "trace/stored_arrays.h"

namespace Quillet {

namespace {

using namespace ScfLayout;

/// The header fields that the reader uses; 0 where the file ends before them.
struct ScfHeader {
  std::uint32_t sampleCount = 0;
  std::uint32_t baseCount = 0;
  std::uint32_t samplesOffset = 0;  // bytes from the start of the file
  std::uint32_t basesOffset = 0;
  std::uint32_t commentsOffset = 0;
  std::uint32_t sampleSize = 0;  // bytes: 1, or any other value for 2
  bool interleaved = true;       // version 2 layout: point by point, base by base

  std::int32_t sampleBytes() const { return sampleSize == 1 ? 1 : 2; }
};

/// The offset as a file position; from 2^31 on it is negative, and a seek to it fails.
std::int32_t signedOffset(std::uint32_t offset) { return static_cast<std::int32_t>(offset); }

/// Reads the header. The position afterwards is the byte after the sample size, or the first byte
/// of a sample size that is cut off.
ScfHeader readHeader(Tessaly::FileReader& file) {
  ScfHeader header;
  file.readUInt32At(headerSampleCount, header.sampleCount);
  file.readUInt32At(headerSamplesOffset, header.samplesOffset);
  file.readUInt32At(headerBaseCount, header.baseCount);
  file.readUInt32At(headerBasesOffset, header.basesOffset);
  file.readUInt32At(headerCommentsOffset, header.commentsOffset);
  std::int8_t version = 0;
  file.readInt8At(headerVersion, version);
  // Deliberate: the first character of the version is signed, so that 128 and above mean version 2.
  // So does a version that is cut off.
  header.interleaved = version <= '2';
  file.readUInt32At(headerSampleSize, header.sampleSize);
  return header;
}

// The position after a whole header was read: the end of the last field in use.
constexpr std::int32_t headerBytesRead = headerSampleSize + 4;

// Bytes of a base in the version 3 layout: the peak, four probabilities, the letter.
constexpr std::int32_t splitBaseSize = 4 + 4 + 1;

/// Whether both claimed counts pass isBacked().
bool backsClaims(const Tessaly::FileReader& file, const ScfHeader& header) {
  const std::int64_t samples = signedOffset(header.samplesOffset);
  const std::int64_t samplesSize =
      std::int64_t{channelCount} * header.sampleCount * header.sampleBytes();
  const std::int64_t bases = signedOffset(header.basesOffset);
  const std::int64_t basesSize =
      std::int64_t{header.baseCount} * (header.interleaved ? baseRecordSize : splitBaseSize);
  // A seek to a negative offset fails; reading then goes on after what was read last.
  const std::int64_t samplesStart = samples >= 0 ? samples : headerBytesRead;
  const std::int64_t basesStart = bases >= 0 ? bases : samplesStart + samplesSize;
  return isBacked(file, header.sampleCount, samplesStart, samplesSize) &&
         isBacked(file, header.baseCount, basesStart, basesSize);
}

// Bytes that are read at a time: a multiple of each record size, 4, 8 and 12.
constexpr std::int32_t chunkSize = 12288;

/// The version 2 layout: for each point a sample of A, C, G and T.
void readInterleavedSamples(Tessaly::FileReader& file, std::int32_t sampleSize,
                            Channels& channels) {
  unsigned char chunk[chunkSize];
  const std::int32_t recordSize = channelCount * sampleSize;
  const std::uint32_t chunkRecords = static_cast<std::uint32_t>(chunkSize / recordSize);
  const std::uint32_t pointCount = channels.pointCount();
  std::uint32_t count = 0;
  for (std::uint32_t first = 0; first < pointCount; first += count) {
    count = std::min(chunkRecords, pointCount - first);
    const std::int32_t held =
        readOrZero(file, chunk, static_cast<std::int32_t>(count) * recordSize);
    zeroCutValue(chunk, held, sampleSize);
    for (int channel = 0; channel < channelCount; ++channel) {
      const auto samples = channels[channel].subspan(first, count);
      const unsigned char* stored = chunk + std::ptrdiff_t{channel} * sampleSize;
      for (std::uint16_t& sample : samples) {
        sample = sampleSize == 1 ? *stored : Tessaly::bigEndian16(stored);
        stored += recordSize;
      }
    }
  }
}

/// The probability of the called base; 0 for a letter without a channel.
template <typename ProbabilityOf>
std::uint8_t qualityOf(char letter, ProbabilityOf probabilityOf) {
  const int channel = channelOf(letter);
  return channel == noChannel ? std::uint8_t{0} : probabilityOf(channel);
}

/// The version 2 layout: for each base a record with all its fields.
void readInterleavedBases(Tessaly::FileReader& file, BaseCalls& calls) {
  unsigned char chunk[chunkSize];
  constexpr std::uint32_t chunkRecords = chunkSize / baseRecordSize;
  std::uint32_t count = 0;
  for (std::uint32_t first = 0; first < calls.count; first += count) {
    count = std::min(chunkRecords, calls.count - first);
    const std::int32_t held =
        readOrZero(file, chunk, static_cast<std::int32_t>(count) * baseRecordSize);
    // An incomplete peak counts as 0. After a complete one each single byte counts.
    if (held % baseRecordSize < baseRecordProbabilities) zeroCutValue(chunk, held, baseRecordSize);
    for (std::uint32_t i = 0; i < count; ++i) {
      const unsigned char* record = chunk + std::size_t{i} * baseRecordSize;
      const char letter = static_cast<char>(record[baseRecordBase]);
      calls.peaks[first + i] = Tessaly::bigEndian32(record + baseRecordPeak);
      calls.bases[first + i] = letter;
      calls.qualities[first + i] =
          qualityOf(letter, [&](int channel) { return record[baseRecordProbabilities + channel]; });
    }
  }
}

/// Version 3 stores second differences: the samples are the running sums of the running sums of the
/// stored values.
class SampleSum {
 public:
  /// Both sums wrap modulo 2^16. Their low bytes are the sums modulo 2^8, which 8-bit samples need.
  std::uint16_t next(std::uint16_t stored) {
    slope_ = static_cast<std::uint16_t>(slope_ + stored);
    sample_ = static_cast<std::uint16_t>(sample_ + slope_);
    return sample_;
  }

 private:
  std::uint16_t slope_ = 0;
  std::uint16_t sample_ = 0;
};

/// The version 3 layout: all samples of A, then those of C, G and T.
void readSplitSamples(Tessaly::FileReader& file, std::int32_t sampleSize, Channels& channels) {
  for (int channel = 0; channel < channelCount; ++channel) {
    const auto samples = channels[channel];
    SampleSum sum;
    if (sampleSize == 2) {
      readArray(file, samples.data(), samples.size());
      for (std::uint16_t& sample : samples) sample = sum.next(sample);
      continue;
    }
    const auto bytes = std::make_unique_for_overwrite<std::uint8_t[]>(samples.size());
    readArray(file, bytes.get(), samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = sum.next(bytes[i]) & 0xFF;
  }
}

/// The version 3 layout: all peaks, all probabilities of A, then of C, G and T, all letters.
void readSplitBases(Tessaly::FileReader& file, BaseCalls& calls) {
  // When the file ends inside a peak, the bytes of that peak are read as probabilities. They are
  // not used, since no letter follows them.
  const std::size_t count = calls.count;
  const auto probabilities =
      std::make_unique_for_overwrite<std::uint8_t[]>(std::size_t{channelCount} * count);
  readArray(file, calls.peaks.get(), count);
  readArray(file, probabilities.get(), std::size_t{channelCount} * count);
  readArray(file, calls.bases.get(), count);
  for (std::size_t i = 0; i < count; ++i) {
    calls.qualities[i] = qualityOf(calls.bases[i], [&](int channel) {
      return probabilities[static_cast<std::size_t>(channel) * count + i];
    });
  }
}

}  // namespace

TraceContent readScf(Tessaly::FileReader& file) {
  const ScfHeader header = readHeader(file);
  if (!backsClaims(file, header)) return TraceContent(TraceFault::dataBeyondFile);

  TraceContent content;
  content.channels = Channels(header.sampleCount);
  content.calls = BaseCalls(header.baseCount);
  // A failed seek is ignored; reading goes on at the current position.
  file.seek(signedOffset(header.samplesOffset));
  if (header.interleaved) {
    readInterleavedSamples(file, header.sampleBytes(), content.channels);
  } else {
    readSplitSamples(file, header.sampleBytes(), content.channels);
  }
  file.seek(signedOffset(header.basesOffset));
  if (header.interleaved) {
    readInterleavedBases(file, content.calls);
  } else {
    readSplitBases(file, content.calls);
  }
  content.calls.peaks[header.baseCount] = header.sampleCount;
  // Deliberate: the search goes on after the comments, up to the end of the file.
  file.seek(signedOffset(header.commentsOffset));
  file.readLineAfter("BCAL=", content.callerName);
  return content;
}

}  // namespace Quillet
