#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "audit/sample_row.h"
#include "report/state_counts.h"

namespace Quillet {

/// Counts rows by state and keeps the first ones of each that are not converted, without figures
/// and notes: no more than it is asked to show.
class WorstSamples {
 public:
  explicit WorstSamples(std::size_t most) : most_(most) {}

  void add(const SampleRow& row);
  const StateCounts& counts() const { return counts_; }

  /// At most `most` rows that are not converted: worst first, within a state as they came.
  std::vector<const SampleRow*> rows() const;
  /// How many more there are.
  std::uint64_t leftOut() const;

 private:
  std::size_t most_;
  StateCounts counts_;
  std::array<std::vector<SampleRow>, sampleStates.size()> rows_;  // by state
};

}  // namespace Quillet
