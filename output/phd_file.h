#pragma once

#include <cstdint>

#include "foundation/string.h"

namespace Tessaly {
class FileWriter;
}

namespace Quillet {

/// The content of one PHD file. Borrows everything.
///
/// Texts are written unchanged. `pointCount` is the number of samples in a channel. `qualities`
/// holds one signed byte for each base; bases after its end have quality 0. `peaks` are 0-based
/// sample indices, at least one for each base; it may be null without bases.
struct PhdRecord {
  const Tessaly::String& sampleName;
  const Tessaly::String& callerName;
  const Tessaly::String& timeText;
  std::uint32_t pointCount;
  const Tessaly::String& bases;
  const Tessaly::String& qualities;
  const std::int32_t* peaks;
};

/// Writes the record in the PHD layout to the file `path`, replacing an existing one. A failure
/// shows only in the next open() of the writer.
void writePhdFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                  const PhdRecord& record);

}  // namespace Quillet
