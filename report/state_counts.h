#pragma once

#include <array>
#include <cstdint>

#include "audit/sample_row.h"

namespace Quillet {

/// How many rows have each state.
class StateCounts {
 public:
  void add(SampleState state) { ++counts_[index(state)]; }
  std::uint64_t of(SampleState state) const { return counts_[index(state)]; }

  /// The exit status of a report that was made: 3 when a result is not to be trusted, else 2 when a
  /// trace has no whole result of its own, else 0.
  int exitStatus() const;

 private:
  static std::size_t index(SampleState state) { return static_cast<std::size_t>(state); }

  std::array<std::uint64_t, sampleStates.size()> counts_{};
};

}  // namespace Quillet
