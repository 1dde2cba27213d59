#include "report/fastq_reads.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace Quillet {

namespace {

constexpr std::uint8_t mostWritten = 93;  // "~" in FASTQ
constexpr char qualityZero = '!';

bool isLetter(char byte) { return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z'); }

char writtenBase(char base) {
  return isLetter(base) || base == '*' || base == '-' || base == '.' ? base : 'N';
}

char writtenQuality(std::uint8_t quality) {
  return static_cast<char>(qualityZero + std::min(countedQuality(quality), mostWritten));
}

char writtenIdByte(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code <= ' ' || code == 0x7F ? '_' : byte;
}

}  // namespace

std::optional<Read> readOf(const AuditedSample& sample, bool trim) {
  const SampleRow& row = sample.row;
  if (sample.content == nullptr || row.state == SampleState::hidden) return {};
  const BaseCalls& calls = sample.content->calls;
  if (calls.count == 0 || !calls.hasUsableQualities()) return {};
  const std::span<const std::uint8_t> qualities(calls.qualities.get(), calls.count);

  std::uint32_t start = 0;
  std::uint32_t end = calls.count;
  if (trim) {
    if (!row.figures) return {};
    start = row.figures->trimStart;
    end = std::min(row.figures->trimEnd, end);
  }
  if (start >= end) return {};

  Read read;
  read.id.resize(row.sample.size());
  std::transform(row.sample.begin(), row.sample.end(), read.id.begin(), writtenIdByte);
  read.bases.resize(end - start);
  std::transform(&calls.bases[start], calls.bases.get() + end, read.bases.begin(), writtenBase);
  read.qualities.resize(end - start);
  std::transform(&calls.qualities[start], calls.qualities.get() + end, read.qualities.begin(),
                 writtenQuality);
  return read;
}

std::string fastqRecord(const Read& read) {
  return '@' + read.id + '\n' + read.bases + "\n+\n" + read.qualities + '\n';
}

std::string fastaRecord(const Read& read) { return '>' + read.id + '\n' + read.bases + '\n'; }

}  // namespace Quillet
