#pragma once

#include <array>
#include <string>
#include <vector>

#include "audit/sample_row.h"
#include "report/state_counts.h"

namespace Quillet {

/// What the program says when no output takes its place: the states with their counts, then the
/// samples that are not converted, worst first.
///
/// Holds no more samples than it will show.
class Summary {
 public:
  static constexpr std::size_t mostSamples = 20;

  void add(const SampleRow& row);
  const StateCounts& counts() const { return counts_; }
  /// For a terminal all control characters in names are escaped.
  std::string text(bool forTerminal) const;

 private:
  StateCounts counts_;
  std::array<std::vector<SampleRow>, sampleStateCount> samples_;  // by state, without figures
};

}  // namespace Quillet
