#pragma once

#include <cstddef>
#include <string>

#include "audit/sample_row.h"
#include "report/state_counts.h"
#include "report/worst_samples.h"

namespace Quillet {

/// What the program says when no output takes its place: the states with their counts, then the
/// samples that are not converted, worst first.
///
/// Holds no more samples than it will show.
class Summary {
 public:
  static constexpr std::size_t mostSamples = 20;

  void add(const SampleRow& row) { worst_.add(row); }
  const StateCounts& counts() const { return worst_.counts(); }
  /// For a terminal all control characters in names are escaped.
  std::string text(bool forTerminal) const;

 private:
  WorstSamples worst_{mostSamples};
};

}  // namespace Quillet
