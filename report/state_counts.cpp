#include "report/state_counts.h"

#include "report/state_texts.h"

namespace Quillet {

int StateCounts::exitStatus() const {
  int status = 0;
  for (const SampleState state : sampleStates) {
    if (of(state) == 0 || severityOf(state) == Severity::whole) continue;
    if (severityOf(state) == Severity::untrusted) return 3;
    status = 2;
  }
  return status;
}

}  // namespace Quillet
