#pragma once

#include <cstdint>

#include "foundation/string.h"

namespace Tessaly {
class FileWriter;
}

namespace Quillet {

class PolyPeaks;

/// The content of one poly file. Borrows everything.
///
/// `peaks` are the called positions (0-based sample indices), at least one for each base; it may be
/// null without bases. `found` is the result of PolyPeaks::compute() for these bases.
struct PolyRecord {
  const Tessaly::String& sampleName;
  const Tessaly::String& bases;
  const std::int32_t* peaks;
  const PolyPeaks& found;
};

/// Writes a line with the sample's name and a line for each base to the file `path`, replacing an
/// existing one. A failure shows only in the next open() of the writer.
void writePolyFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                   const PolyRecord& record);

}  // namespace Quillet
