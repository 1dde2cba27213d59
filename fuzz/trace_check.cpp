#include "fuzz/trace_check.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/dirty_memory.h"
#include "fuzz/scratch_file.h"
#include "trace/trace_file.h"

namespace {

// A claim of samples or bases that the file does not hold may not exceed this.
constexpr std::uint32_t unbackedCountLimit = 4'194'304;

// With more samples and bases than this, opening twice would take too long.
constexpr std::uint32_t openedTwiceCount = 100'000;

/// All that a caller gets from a trace.
struct Outcome {
  bool opened = false;
  std::int32_t status = -1;
  bool usableQualities = false;
  std::uint32_t pointCount = 0;
  std::uint32_t baseCount = 0;
  std::vector<std::uint16_t> channels[4];
  std::string bases;
  std::string qualities;
  std::vector<std::int32_t> peaks;
  std::string callerName;

  bool operator==(const Outcome&) const = default;
};

std::string standardText(const Tessaly::String& text) {
  return {text.text(), static_cast<std::size_t>(text.length())};
}

// The caller's texts and peaks before getBaseCalls().
constexpr const char* formerBases = "former bases";
constexpr const char* formerQualities = "former qualities";
const std::vector<std::int32_t> formerPeaks{-1, -2, -3};

void takeChannels(Quillet::TraceFile& trace, Outcome& outcome) {
  const Quillet::Channels channels = trace.takeContent().channels;
  outcome.pointCount = channels.pointCount();
  for (int i = 0; i < Quillet::channelCount; ++i) {
    outcome.channels[i].assign(channels[i].begin(), channels[i].end());
  }
}

void takeCalls(const Quillet::TraceFile& trace, Outcome& outcome) {
  Tessaly::String bases(formerBases);
  Tessaly::String qualities(formerQualities);
  Tessaly::Vector<std::int32_t> peaks;
  peaks.assign(formerPeaks.data(), static_cast<std::int32_t>(formerPeaks.size()));
  outcome.usableQualities = trace.getBaseCalls(bases, qualities, peaks);
  outcome.baseCount = trace.baseCount();
  outcome.bases = standardText(bases);
  outcome.qualities = standardText(qualities);
  outcome.peaks.assign(peaks.data(), peaks.data() + peaks.size());
  outcome.callerName = standardText(trace.callerName());
}

Outcome openTrace(const ScratchFile& file) {
  Quillet::TraceFile trace;
  Tessaly::String name(file.path().c_str());
  Outcome outcome;
  outcome.opened = trace.open(name);
  outcome.status = trace.status();
  require(name == file.path().c_str(), "a name without .gz stays as it is");
  require(!trace.is_open(), "the file is closed afterwards");
  if (!outcome.opened) return outcome;
  takeCalls(trace, outcome);
  takeChannels(trace, outcome);
  return outcome;
}

void requireSense(const Outcome& outcome, std::size_t fileSize) {
  require(outcome.status == (outcome.opened ? 0 : 2), "the status agrees with open()");
  if (!outcome.opened) return;

  require(outcome.pointCount <= unbackedCountLimit || outcome.pointCount <= fileSize,
          "the file holds what a large sample count claims");
  require(outcome.baseCount <= unbackedCountLimit || outcome.baseCount <= fileSize,
          "the file holds what a large base count claims");
  require(outcome.callerName.size() <= fileSize, "the caller's name comes from the file");
  if (outcome.baseCount == 0) {
    require(!outcome.usableQualities && outcome.bases == formerBases &&
                outcome.qualities == formerQualities && outcome.peaks == formerPeaks,
            "without base calls the caller's values stay unchanged");
    return;
  }
  require(outcome.peaks.size() == std::size_t{outcome.baseCount} + 1, "one more peak than bases");
  require(outcome.peaks.back() == static_cast<std::int32_t>(outcome.pointCount),
          "the last peak is the number of samples");
  require(
      outcome.bases.size() <= outcome.baseCount && outcome.bases.find('\0') == std::string::npos,
      "the bases end at a zero byte");
  if (!outcome.usableQualities) {
    require(outcome.qualities == formerQualities, "unusable qualities are not handed over");
    return;
  }
  require(outcome.qualities.size() <= outcome.baseCount &&
              outcome.qualities.find('\0') == std::string::npos,
          "the qualities end at a zero byte");
}

/// Whether the number at `offset` is a large count that a reader accepts without the data for it.
bool claimsLong(std::string_view bytes, std::size_t offset) {
  if (bytes.size() < 4 || offset > bytes.size() - 4) return false;
  std::uint32_t count = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    count = count << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return count > 20'000 && count <= unbackedCountLimit;
}

/// Whether opening the bytes would mostly fill arrays with zeros.
bool takesLong(std::string_view bytes) {
  // An SCF header has its counts at 4 and 12. An ABIF directory entry has its count 12 bytes after
  // the start of its name.
  if (bytes.starts_with(".scf")) return claimsLong(bytes, 4) || claimsLong(bytes, 12);
  for (const std::string_view name : {"DATA", "PBAS"}) {
    for (std::size_t entry = bytes.find(name); entry < bytes.size();
         entry = bytes.find(name, entry + 1)) {
      if (claimsLong(bytes, entry + 12)) return true;
    }
  }
  return false;
}

}  // namespace

void checkTrace(const std::uint8_t* bytes, std::size_t count) {
  if (count % 64 != 0 && takesLong({reinterpret_cast<const char*>(bytes), count})) return;
  static const ScratchFile file("trace");
  file.hold(bytes, count);

  setDirt(0x5A);
  const Outcome outcome = openTrace(file);
  requireSense(outcome, count);
  if (outcome.pointCount + outcome.baseCount > openedTwiceCount) return;
  setDirt(0xC3);
  require(openTrace(file) == outcome, "the outcome does not depend on unset memory");
}
