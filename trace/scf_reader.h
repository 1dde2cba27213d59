#pragma once

#include "trace/file_reader.h"
#include "trace/trace_content.h"

namespace Quillet {

/// Reads an open SCF file of version 1, 2 or 3. Fails only when a count is far beyond what the file
/// holds (TraceFault::dataBeyondFile); whatever else the file does not hold is zero as stored.
TraceContent readScf(Tessaly::FileReader& file);

}  // namespace Quillet
