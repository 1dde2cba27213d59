#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// One row of the report: what the audit says of one name. Texts are bytes as they stand in names
// and files; nothing is escaped. An empty optional is unknown.
namespace Quillet {

/// Worst first.
enum class SampleState {
  differs,    // the result is not what its own trace gives
  borrowed,   // calls or qualities are those of another trace
  cut,        // a result file is not whole
  noPoly,     // the .phd.1 is right, and there is no .poly
  orphan,     // a result whose sample no name has
  invalid,    // no result; the trace can not be read
  refused,    // no result; the trace has no calls or qualities, or the gate refuses them
  hidden,     // the sample's result belongs to another name
  waiting,    // no result yet; the trace has one to give
  converted,  // both results are right
};

/// All states in this order.
inline constexpr std::array sampleStates{
    SampleState::differs, SampleState::borrowed, SampleState::cut,     SampleState::noPoly,
    SampleState::orphan,  SampleState::invalid,  SampleState::refused, SampleState::hidden,
    SampleState::waiting, SampleState::converted};

/// "differs", "no-poly": as reports write it.
const char* textOf(SampleState state);

/// A stored quality as figures and reads count it: a byte above 127 is none.
inline std::uint8_t countedQuality(std::uint8_t stored) { return stored > 127 ? 0 : stored; }

/// A base with a second peak under its call.
struct MixedBase {
  std::uint32_t position = 0;  // 1-based number of the base
  char second = 'N';           // A, C, G or T
  double ratio = 0;  // height of the second peak, measured by the called one; may be infinite
};

/// Figures of the calls as stored, untruncated; a quality above 127 counts as 0.
struct CallFigures {
  double meanQuality = 0;
  std::uint32_t q20 = 0;         // bases of quality 20 or more
  std::uint32_t contiguous = 0;  // length of the longest good stretch
  std::uint32_t trimStart = 0;   // 0-based; Mott's trimming
  std::uint32_t trimEnd = 0;     // exclusive; 0 and 0 when nothing is left
  std::uint32_t noCalls = 0;     // bases other than A, C, G, T in either case
  std::vector<MixedBase> mixed;  // by ascending position
};

/// The positions of the mixed bases.
std::vector<std::uint32_t> mixedPositions(const CallFigures& figures);

/// What the instrument wrote beside the trace.
struct InstrumentNotes {
  std::optional<std::string> plate;
  std::optional<std::string> well;
  std::optional<std::int32_t> capillary;
  std::optional<std::int32_t> signalToNoise;  // the smallest of the four channels
  std::optional<std::string> instrument;
  std::optional<std::string> runDate;  // "2026-11-21"
};

struct SampleRow {
  std::string sample;
  std::optional<std::string> trace;  // the listed name; none for an orphan
  SampleState state = SampleState::waiting;
  std::string detail;                  // empty where the state says all
  std::optional<std::uint32_t> bases;  // none when the trace can not be read
  std::optional<CallFigures> figures;  // none without calls
  std::optional<std::string> caller;   // none when the trace can not be read
  InstrumentNotes notes;
};

}  // namespace Quillet
