#pragma once

#include <string>

#include "foundation/string.h"

namespace Quillet {

/// The sample name of a listed name: cuts off a final ".gz" and then, with `stripExtensions`, a
/// known extension. Both output files are named after the sample.
Tessaly::String sampleName(const std::string& listedName, bool stripExtensions);

}  // namespace Quillet
