#pragma once

#include <cstdint>

#include "foundation/string.h"

namespace Tessaly {
class FileWriter;
}

namespace Quillet {

class PolyPeaks;

/// Writes the peak file of a sample: a line with its name, then a line for every base with the
/// called peak, the strongest competing one and the heights of all four channels.
///
/// `peaks` are the called positions (0-based sample indices), `found` what was computed for these
/// bases. Opens, writes and closes `path`; a failure to write shows in the writer's state only.
void writePolyFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                   const Tessaly::String& sampleName, const Tessaly::String& bases,
                   const std::int32_t* peaks, const PolyPeaks& found);

}  // namespace Quillet
