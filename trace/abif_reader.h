#pragma once

#include <cstdint>

#include "trace/file_reader.h"
#include "trace/trace_content.h"

namespace Quillet {

/// Reads an open ABIF file. `baseOffset` is where its "ABIF" stands: 0, or 128 after a carrier's
/// header. Fails when the directory or the channels can not be used; calls and channels that the
/// file cuts short hold zeros from there on.
TraceContent readAbif(Tessaly::FileReader& file, std::uint32_t baseOffset);

}  // namespace Quillet
