#pragma once

#include <cstdint>

#include "trace/file_reader.h"
#include "trace/trace_content.h"

namespace Quillet {

/// Reads an open ABIF file. `baseOffset` is the position of its "ABIF": 0, or 128 in a file with a
/// prefix. Sets a fault when the directory or the channels can not be used. When the file is too
/// short for a channel or the calls, the missing values are 0.
TraceContent readAbif(Tessaly::FileReader& file, std::uint32_t baseOffset);

}  // namespace Quillet
