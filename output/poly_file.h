#pragma once

#include <cstdint>

#include "foundation/string.h"

namespace Tessaly {
class FileWriter;
}

namespace Quillet {

class PolyPeaks;

/// What one poly file says, borrowed from its owners for the length of the call.
///
/// `peaks` are the called positions (0-based sample indices), at least one per base; null will do
/// when there are no bases. `found` is what was computed for these bases.
struct PolyRecord {
  const Tessaly::String& sampleName;
  const Tessaly::String& bases;
  const std::int32_t* peaks;
  const PolyPeaks& found;
};

/// Opens `path` with the writer, replacing an existing file, writes a line with the sample's name
/// and a line for every base, and closes. Failures show only in the writer's next open.
void writePolyFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                   const PolyRecord& record);

}  // namespace Quillet
