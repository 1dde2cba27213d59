#include "trace/trace_file.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

#include "foundation/clock.h"

namespace Quillet {

namespace {

// Deliberate: qualities count only if one of them is above this. A quality field of small values
// alone holds placeholders.
constexpr signed char largestPlaceholderQuality = 9;

// Reads through `read(destination, count)`, which takes signed counts and returns how many values
// it got, and puts zeros into the rest.
template <typename Value, typename Read>
void readThenZero(Value* destination, std::size_t count, Read read) {
  constexpr std::size_t largestRead = std::size_t{1} << 30;
  std::size_t held = 0;
  while (held < count) {
    const std::size_t wanted = std::min(count - held, largestRead);
    const auto got =
        static_cast<std::size_t>(read(destination + held, static_cast<std::int32_t>(wanted)));
    held += got;
    if (got < wanted) break;
  }
  std::fill(destination + held, destination + count, Value{0});
}

}  // namespace

TraceFile::TraceFile() : madeAt_(std::time(nullptr)) {}

// Asked for by compressed traces only: local time takes a look at the system's time zone.
Tessaly::String TraceFile::tempName() const {
  return Tessaly::Clock(madeAt_).format("temp%y%M%D%h%m%s");
}

void TraceFile::setDirectory(const Tessaly::String& name) {
  directory_ = name;
  // Deliberate: the empty text does not end in "/" and becomes the root.
  if (!name.endsWith('/')) directory_.append('/');
}

void TraceFile::copyChannel(std::uint16_t* destination, std::uint32_t index) const {
  if (index > 3) return;
  std::copy_n(channels_[index].get(), pointCount_, destination);
}

void TraceFile::copyChannels(std::uint16_t* a, std::uint16_t* c, std::uint16_t* g,
                             std::uint16_t* t) const {
  copyChannel(a, 0);
  copyChannel(c, 1);
  copyChannel(g, 2);
  copyChannel(t, 3);
}

void TraceFile::newChannels(std::unique_ptr<std::uint16_t[]> (&channels)[4],
                            std::uint32_t& count) const {
  count = pointCount_;
  for (std::uint32_t index = 0; index < 4; ++index) {
    channels[index] = std::make_unique_for_overwrite<std::uint16_t[]>(pointCount_);
    copyChannel(channels[index].get(), index);
  }
}

void TraceFile::releaseChannels(std::unique_ptr<std::uint16_t[]> (&channels)[4],
                                std::uint32_t& count) {
  count = std::exchange(pointCount_, 0);
  std::move(std::begin(channels_), std::end(channels_), std::begin(channels));
}

bool TraceFile::getBaseCalls(Tessaly::String& bases, Tessaly::String& qualities,
                             Tessaly::Vector<std::int32_t>& peaks) const {
  // Texts and vectors count in signed 32 bits: more calls than that can not be handed over.
  constexpr std::uint32_t tooMany = std::numeric_limits<std::int32_t>::max();
  if (baseCount_ == 0 || baseCount_ >= tooMany) return false;

  const auto count = static_cast<std::int32_t>(baseCount_);
  bases.setPrefix(bases_.get(), count);
  // A stored index of 2^31 or more is negative from here on.
  peaks.assign(reinterpret_cast<const std::int32_t*>(peaks_.get()), count + 1);

  const bool usable = std::any_of(qualities_.get(), qualities_.get() + count, [](char quality) {
    // Deliberate: 128 and above count as negative, so as placeholders too.
    return static_cast<signed char>(quality) > largestPlaceholderQuality;
  });
  // Deliberate: a quality of 0 ends the quality text, which is then shorter than the bases.
  if (usable) qualities.setPrefix(qualities_.get(), count);
  return usable;
}

bool TraceFile::isBacked(std::uint32_t count, std::int64_t offset, std::int64_t byteCount) const {
  return count <= unbackedCountLimit || (offset >= 0 && offset + byteCount <= fileSize());
}

void TraceFile::fill(char* destination, std::size_t count) {
  readThenZero(destination, count, [this](char* to, std::int32_t n) { return readBytes(to, n); });
}

void TraceFile::fill(std::uint16_t* destination, std::size_t count) {
  readThenZero(destination, count,
               [this](std::uint16_t* to, std::int32_t n) { return readUInt16Array(to, n); });
}

void TraceFile::fill(std::uint32_t* destination, std::size_t count) {
  readThenZero(destination, count,
               [this](std::uint32_t* to, std::int32_t n) { return readUInt32Array(to, n); });
}

}  // namespace Quillet
