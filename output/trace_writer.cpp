#include "output/trace_writer.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "foundation/big_endian.h"

namespace Quillet {

namespace {

constexpr std::uint32_t bytesPerSample = 2;
constexpr std::size_t bytesPerPoint =
    std::size_t{4} * bytesPerSample;  // one sample of each channel

/// The channels interleaved point by point, `bytesPerPoint` bytes each.
std::unique_ptr<char[]> interleave(const std::int16_t* const channels[4], std::size_t pointCount) {
  auto block = std::make_unique<char[]>(bytesPerPoint * pointCount);
  char* next = block.get();
  for (std::size_t i = 0; i < pointCount; ++i) {
    // Deliberate: samples keep the host's byte order, although SCF numbers are big-endian.
    const std::int16_t point[4] = {channels[0][i], channels[1][i], channels[2][i], channels[3][i]};
    std::memcpy(next, point, bytesPerPoint);
    next += bytesPerPoint;
  }
  return block;
}

}  // namespace

TraceWriter::TraceWriter() {
  std::memcpy(header_ + ScfLayout::headerMagic, ".scf", 4);
  Tessaly::putBigEndian32(header_ + ScfLayout::headerSamplesOffset, ScfLayout::headerSize);
  std::memcpy(header_ + ScfLayout::headerVersion, "2.00", 4);
  Tessaly::putBigEndian32(header_ + ScfLayout::headerSampleSize, bytesPerSample);
}

TraceWriter::~TraceWriter() = default;

void TraceWriter::writeTrace(Tessaly::String& name, const std::int16_t* const channels[4],
                             std::int32_t count) {
  // The cast keeps the four bytes of the count, whatever its sign.
  Tessaly::putBigEndian32(header_ + ScfLayout::headerSampleCount,
                          static_cast<std::uint32_t>(count));
  const std::size_t pointCount = static_cast<std::size_t>(std::max(count, 0));
  const std::unique_ptr<char[]> block = interleave(channels, pointCount);

  name.append(".scf");
  open(name);
  writeBytes(header_, ScfLayout::headerSize);
  // One call, or several when the block is larger than a call can count.
  constexpr std::size_t pointsPerCall = (std::size_t{1} << 30) / bytesPerPoint;
  for (std::size_t done = 0; done < pointCount; done += pointsPerCall) {
    const std::size_t points = std::min(pointsPerCall, pointCount - done);
    writeBytes(block.get() + bytesPerPoint * done,
               static_cast<std::int32_t>(bytesPerPoint * points));
  }
  close();
}

}  // namespace Quillet
