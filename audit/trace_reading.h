#pragma once

#include <string>

#include "audit/sample_row.h"
#include "trace/trace_content.h"

namespace Quillet {

/// What reading a trace again has brought.
struct TraceReading {
  std::string fault;       // why the trace can not be read; empty when it can
  TraceContent content;    // nothing when it can not be read
  InstrumentNotes notes;   // nothing when it can not be read
  std::string packedPath;  // of the .gz that the converter has a shell unpack; empty without one
  bool isDamaged = false;  // the .gz is not intact: gunzip had to say what it holds
};

/// Finds and reads the trace at `path` as TraceFile::open does, and unpacks it without a shell.
/// Throws what UnpackedFile throws.
TraceReading readTrace(const std::string& path);

}  // namespace Quillet
