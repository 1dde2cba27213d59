#pragma once

#include <string>

namespace Quillet {

/// Whether a sample has a whole .phd.1 and a whole .poly for it in these folders, whose paths end
/// in "/". Their trace is not read again.
bool hasWholeResults(const std::string& phdPath, const std::string& polyPath,
                     const std::string& sample);

}  // namespace Quillet
