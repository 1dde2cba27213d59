#include "trace/trace_file.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "foundation/clock.h"

namespace Quillet {

TraceFile::TraceFile() : madeAt_(std::time(nullptr)) {}

// Computed for compressed traces only: local time reads the system's time zone.
Tessaly::String TraceFile::tempName() const {
  return Tessaly::Clock(madeAt_).format("temp%y%M%D%h%m%s");
}

void TraceFile::setDirectory(const Tessaly::String& name) {
  directory_ = name;
  // Deliberate: the empty text does not end in "/" and becomes the root.
  if (!name.endsWith('/')) directory_.append('/');
}

void TraceFile::copyChannel(std::uint16_t* destination, std::uint32_t index) const {
  if (index >= channelCount) return;
  const auto samples = content_.channels[static_cast<int>(index)];
  std::copy(samples.begin(), samples.end(), destination);
}

void TraceFile::copyChannels(std::uint16_t* a, std::uint16_t* c, std::uint16_t* g,
                             std::uint16_t* t) const {
  copyChannel(a, 0);
  copyChannel(c, 1);
  copyChannel(g, 2);
  copyChannel(t, 3);
}

void TraceFile::newChannels(std::unique_ptr<std::uint16_t[]>& a,
                            std::unique_ptr<std::uint16_t[]>& c,
                            std::unique_ptr<std::uint16_t[]>& g,
                            std::unique_ptr<std::uint16_t[]>& t, std::uint32_t& count) const {
  count = pointCount();
  for (auto* copy : {&a, &c, &g, &t}) {
    *copy = std::make_unique_for_overwrite<std::uint16_t[]>(count);
  }
  copyChannels(a.get(), c.get(), g.get(), t.get());
}

bool TraceFile::getBaseCalls(Tessaly::String& bases, Tessaly::String& qualities,
                             Tessaly::Vector<std::int32_t>& peaks) const {
  const BaseCalls& calls = content_.calls;
  // Texts and vectors count in signed 32 bits: more calls than that can not be handed over.
  constexpr std::uint32_t tooMany = std::numeric_limits<std::int32_t>::max();
  if (calls.count == 0 || calls.count >= tooMany) return false;

  const auto count = static_cast<std::int32_t>(calls.count);
  bases.setPrefix(calls.bases.get(), count);
  // A stored index of 2^31 or more is negative from here on.
  peaks.assign(reinterpret_cast<const std::int32_t*>(calls.peaks.get()), count + 1);

  if (!calls.hasUsableQualities()) return false;
  // Deliberate: a quality of 0 ends the quality text, which is then shorter than the bases.
  qualities.setPrefix(reinterpret_cast<const char*>(calls.qualities.get()), count);
  return true;
}

}  // namespace Quillet
