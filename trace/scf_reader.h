#pragma once

#include "trace/file_reader.h"
#include "trace/trace_content.h"

namespace Quillet {

/// Reads an open SCF file of version 1, 2 or 3. The only fault is TraceFault::dataBeyondFile: a
/// large count that the file is too short for. Other bytes that the file lacks count as zeros
/// stored in it.
TraceContent readScf(Tessaly::FileReader& file);

}  // namespace Quillet
