#include "report/worst_samples.h"

namespace Quillet {

void WorstSamples::add(const SampleRow& row) {
  counts_.add(row.state);
  std::vector<SampleRow>& rows = rows_[static_cast<std::size_t>(row.state)];
  if (row.state == SampleState::converted || rows.size() == most_) return;
  SampleRow& kept = rows.emplace_back();
  kept.sample = row.sample;
  kept.trace = row.trace;
  kept.state = row.state;
  kept.detail = row.detail;
}

std::vector<const SampleRow*> WorstSamples::rows() const {
  std::vector<const SampleRow*> worst;
  for (const std::vector<SampleRow>& rows : rows_) {
    for (const SampleRow& row : rows) {
      if (worst.size() == most_) return worst;
      worst.push_back(&row);
    }
  }
  return worst;
}

std::uint64_t WorstSamples::leftOut() const {
  std::uint64_t all = 0;
  for (const SampleState state : sampleStates) {
    if (state != SampleState::converted) all += counts_.of(state);
  }
  return all - rows().size();
}

}  // namespace Quillet
