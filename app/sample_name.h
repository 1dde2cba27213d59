#pragma once

#include <string>

#include "foundation/string.h"

namespace Quillet {

/// The sample that a listed name stands for: the name without a final ".gz" and, with
/// `stripExtensions`, without a known extension. Both output files are named after it.
Tessaly::String sampleName(const std::string& listedName, bool stripExtensions);

}  // namespace Quillet
