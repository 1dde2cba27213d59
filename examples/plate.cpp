#include "examples/plate.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>

#include "tests/support/instrument_trace.h"

namespace {

constexpr int columnCount = 12;
constexpr int columnsOfRun = 2;
constexpr int failedCapillary = 7;
constexpr int longest = 950;
constexpr int secondTemplateStart = 380;  // 0-based
constexpr int insertion = 4;              // bases by which the second template of G03 is shifted

const std::set<std::string> emptyWells{"E02", "G12", "H11", "H12"};
const std::map<std::string, int> shortReads{
    {"A04", 352}, {"B11", 238}, {"C08", 276}, {"F05", 448}, {"H07", 521}};

struct Well {
  int row = 0;  // 0 is A
  int column = 1;

  int number() const { return row * columnCount + column; }
  int run() const { return (column - 1) / columnsOfRun; }
  int capillary() const { return 1 + columnsOfRun * row + (column - 1) % columnsOfRun; }
  std::string letter() const { return {static_cast<char>('A' + row)}; }
  /// "A01", as in the name of a sample.
  std::string name() const { return letter() + (column < 10 ? "0" : "") + std::to_string(column); }
  /// "A1", as the instrument writes it.
  std::string noted() const { return letter() + std::to_string(column); }
};

constexpr Well wellG03{6, 3};

std::string sampleOf(const Well& well) { return "P01_" + well.name() + "_COI_F"; }

std::string pascalText(const std::string& text) { return static_cast<char>(text.size()) + text; }

std::string shorts(const std::vector<int>& values) {
  std::string bytes;
  for (const int value : values) {
    bytes += static_cast<char>(value >> 8 & 0xFF);
    bytes += static_cast<char>(value & 0xFF);
  }
  return bytes;
}

/// The marker of one species, as all wells have it with differences.
std::string markerOf(const Well& well, int length) {
  const std::string common = mitochondrialBases(96, longest + 50);
  std::string own = relativeOf(common, static_cast<std::uint32_t>(well.number()), 9);
  own.replace(78 + static_cast<std::size_t>(well.number() % 5), 3, "TTT");  // for the blob
  return own.substr(0, static_cast<std::size_t>(length));
}

int lengthOf(const Well& well) {
  const auto found = shortReads.find(well.name());
  return found != shortReads.end() ? found->second : 700 + well.number() * 61 % (longest - 699);
}

InstrumentRead readOf(const Well& well) {
  InstrumentRead read;
  read.seed = static_cast<std::uint32_t>(9600 + well.number());
  read.bases = markerOf(well, lengthOf(well));
  read.signal = 620 + well.number() * 97 % 520;
  read.fadingStart = 400 + well.number() * 29 % 120;
  if (well.name() == "E10") {
    read.bases[246] = 'C';
    read.mixed = MixedBase{.index = 246, .letter = 'T'};
  }
  if (well.name() == "G03") {
    // An insertion in one of two copies of the marker: the copies are out of step from there on.
    const auto start = static_cast<std::size_t>(secondTemplateStart);
    read.second = SecondTemplate{.start = secondTemplateStart,
                                 .bases = markerOf(well, lengthOf(well) + insertion)
                                              .substr(start + static_cast<std::size_t>(insertion))};
  }
  return read;
}

/// The files of other programs hold the calls twice, as called and as edited.
AbifBuilder withCalls(AbifBuilder builder, const TraceContents& trace) {
  return builder.without("PBAS", 2)
      .without("PCON", 2)
      .without("PLOC", 2)
      .entry("PBAS", 2, trace.bases)
      .entry("PCON", 2, std::string(trace.qualities.begin(), trace.qualities.end()))
      .entry("PLOC", 2, shorts(trace.peaks), 2);
}

AbifBuilder withNotes(AbifBuilder builder, const Well& well, int signalToNoise) {
  constexpr std::uint16_t date = 10;
  constexpr std::uint16_t pascal = 18;
  constexpr std::uint16_t terminated = 19;
  const int day = 2 + well.run();
  const std::vector<int> signals{signalToNoise, signalToNoise * 9 / 8, signalToNoise * 7 / 8,
                                 signalToNoise * 5 / 4};
  return builder.entry("CTNM", 1, std::string("P01_COI") + '\0')
      .type("CTNM", 1, terminated)
      .entry("LANE", 1, shorts({well.capillary()}), 2)
      .entry("MCHN", 1, pascalText("SEQ16-0042"))
      .type("MCHN", 1, pascal)
      .entry("RUND", 1, shorts({2026}) + '\3' + static_cast<char>(day), 4)
      .type("RUND", 1, date)
      .entry("S/N%", 1, shorts(signals), 2)
      .entry("SMPL", 1, pascalText(sampleOf(well)))
      .type("SMPL", 1, pascal)
      .entry("TUBE", 1, pascalText(well.noted()))
      .type("TUBE", 1, pascal);
}

std::string fileOf(const Well& well) {
  const bool isFailed = well.capillary() == failedCapillary;
  const InstrumentRead read = readOf(well);
  const TraceContents trace =
      isFailed ? failedTrace(read.seed, 220 + well.number() * 31 % 160) : instrumentTrace(read);
  AbifBuilder builder = withCalls(trace.abif().callerName("KB 1.4"), trace);
  builder =
      withNotes(builder, well, isFailed ? 3 + well.column % 4 : static_cast<int>(read.signal));
  if (well.name() == "B06") {
    for (const char* entry : {"PBAS", "PCON", "PLOC"}) builder.without(entry, 1).without(entry, 2);
  }
  const std::string bytes = builder.build();
  return well.name() == "F09" ? bytes.substr(0, bytes.size() * 3 / 5) : bytes;
}

}  // namespace

std::vector<PlateTrace> plateOf96() {
  std::vector<PlateTrace> traces;
  for (int row = 0; row < 8; ++row) {
    for (int column = 1; column <= columnCount; ++column) {
      const Well well{row, column};
      if (!emptyWells.contains(well.name())) traces.push_back({sampleOf(well), fileOf(well)});
    }
  }
  return traces;
}

MixedTemplates templatesOfG03() {
  const InstrumentRead read = readOf(wellG03);
  return {read.bases, read.second->bases};
}
