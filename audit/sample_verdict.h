#pragma once

#include <optional>
#include <string>

#include "app/quality_gate.h"
#include "audit/sample_row.h"

namespace Quillet {

/// What decides, of a trace.
struct TraceFinding {
  std::string fault = {};       // why it can not be read; empty when it can
  std::string impediment = {};  // why no result can come of it even so; empty when one can
  bool holdsCalls = false;
  bool holdsQualities = false;
  std::optional<UnusableQuality> unusable = {};  // what the gate refuses of a trace alone
  std::int32_t qualityCount = 0;                 // up to the first stored 0
};

/// What decides, of a sample's result files. "Right" is what the trace alone gives. No .phd.1 is
/// right where the gate refuses the trace; a .poly can be.
struct ResultFinding {
  bool hasPhd = false;
  bool phdIsWhole = false;  // true for a right one as well, here and below
  bool phdIsRight = false;
  bool basesDiffer = false;  // these four: of a .phd.1 that is whole
  bool qualitiesDiffer = false;
  bool positionsDiffer = false;
  bool headerDiffers = false;
  bool hasPoly = false;
  bool polyIsWhole = false;
  bool polyIsRight = false;
};

struct SampleVerdict {
  SampleState state = SampleState::waiting;
  std::string detail;
};

/// The state of one name that has its sample for itself.
SampleVerdict verdictOf(const TraceFinding& trace, const ResultFinding& result);

/// The state that it has without a result: invalid, refused or waiting.
SampleVerdict verdictWithoutResult(const TraceFinding& trace);

}  // namespace Quillet
