#include "audit/sample_row.h"

namespace Quillet {

const char* textOf(SampleState state) {
  switch (state) {
    case SampleState::differs:
      return "differs";
    case SampleState::borrowed:
      return "borrowed";
    case SampleState::cut:
      return "cut";
    case SampleState::noPoly:
      return "no-poly";
    case SampleState::orphan:
      return "orphan";
    case SampleState::invalid:
      return "invalid";
    case SampleState::refused:
      return "refused";
    case SampleState::hidden:
      return "hidden";
    case SampleState::waiting:
      return "waiting";
    case SampleState::converted:
      break;
  }
  return "converted";
}

std::vector<std::uint32_t> mixedPositions(const CallFigures& figures) {
  std::vector<std::uint32_t> positions;
  positions.reserve(figures.mixed.size());
  for (const MixedBase& base : figures.mixed) positions.push_back(base.position);
  return positions;
}

}  // namespace Quillet
