#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "audit/project_audit.h"
#include "audit/sample_row.h"

// Rows and traces made by hand, for the tests of what a report writes.

/// A row in which nothing is unknown; every value is another one.
inline Quillet::SampleRow fullRow() {
  Quillet::SampleRow row;
  row.sample = "clone01";
  row.trace = "clone01.ab1.gz";
  row.state = Quillet::SampleState::cut;
  row.detail = "phd,poly";
  row.bases = 735;
  row.figures = Quillet::CallFigures{.meanQuality = 41.26,
                                     .q20 = 700,
                                     .contiguous = 650,
                                     .trimStart = 12,
                                     .trimEnd = 690,
                                     .noCalls = 3,
                                     .mixed = {{45, 'G', 0.5}, {101, 'T', 0.4}}};
  row.caller = "caller 1.4";
  row.notes = {.plate = "P07",
               .well = "B01",
               .capillary = 41,
               .signalToNoise = 512,
               .instrument = "machine 3",
               .runDate = "2026-11-21"};
  return row;
}

/// A result without a trace: all that it has is known from its files.
inline Quillet::SampleRow orphanRow() {
  Quillet::SampleRow row;
  row.sample = "old";
  row.state = Quillet::SampleState::orphan;
  row.detail = "poly";
  return row;
}

inline Quillet::SampleRow rowOf(const std::string& sample, Quillet::SampleState state,
                                const std::string& detail = {}) {
  Quillet::SampleRow row;
  row.sample = sample;
  row.trace = sample + ".ab1";
  row.state = state;
  row.detail = detail;
  return row;
}

inline Quillet::TraceContent contentOf(const std::string& bases,
                                       const std::vector<std::uint8_t>& qualities) {
  Quillet::TraceContent content;
  content.calls = Quillet::BaseCalls(static_cast<std::uint32_t>(bases.size()));
  for (std::size_t i = 0; i < bases.size(); ++i) {
    content.calls.bases[i] = bases[i];
    content.calls.qualities[i] = qualities[i];
    content.calls.peaks[i] = 0;
  }
  content.calls.peaks[bases.size()] = 0;
  return content;
}
