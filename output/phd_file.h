#pragma once

#include <cstdint>

#include "foundation/string.h"

namespace Tessaly {
class FileWriter;
}

namespace Quillet {

/// What one PHD file says, borrowed from its owners for the length of the call.
///
/// The texts are written as they stand. `pointCount` counts the samples of a channel. `qualities`
/// holds one signed byte per base; bases beyond its end have quality 0. `peaks` are 0-based sample
/// indices, at least one per base; null will do when there are no bases.
struct PhdRecord {
  const Tessaly::String& sampleName;
  const Tessaly::String& callerName;
  const Tessaly::String& timeText;
  std::uint32_t pointCount;
  const Tessaly::String& bases;
  const Tessaly::String& qualities;
  const std::int32_t* peaks;
};

/// Opens `path` with the writer, replacing an existing file, writes the record in the PHD layout,
/// and closes. Failures show only in the writer's next open.
void writePhdFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                  const PhdRecord& record);

}  // namespace Quillet
