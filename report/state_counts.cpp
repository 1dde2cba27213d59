#include "report/state_counts.h"

namespace Quillet {

int StateCounts::exitStatus() const {
  using enum SampleState;
  for (const SampleState state : {differs, borrowed, cut, orphan}) {
    if (of(state) > 0) return 3;
  }
  for (const SampleState state : {noPoly, invalid, refused, hidden, waiting}) {
    if (of(state) > 0) return 2;
  }
  return 0;
}

}  // namespace Quillet
