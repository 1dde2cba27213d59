#pragma once

#include <string>

#include "report/worst_samples.h"

namespace Quillet {

/// What a page shows where no script runs: the states that occur with their counts, and the samples
/// that are not converted. HTML.
std::string staticList(const WorstSamples& worst);

}  // namespace Quillet
