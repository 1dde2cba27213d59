#pragma once

#include <cstdint>

#include "foundation/scf_layout.h"
#include "output/file_writer.h"

namespace Quillet {

/// Writes four channels of samples as an SCF file of version 2: a header and the samples, without
/// bases, comments or private data.
///
/// The channels stand in the file in the order in which they are given; which base each holds is
/// the caller's choice. They are borrowed for the call. Errors: a file that can not be created is
/// skipped in silence; after one failure every later file is made, and stays empty, so that a new
/// TraceWriter is needed. Use: construct, then writeTrace as often as wanted.
class TraceWriter : public Tessaly::FileWriter {
 public:
  TraceWriter();
  ~TraceWriter() override;

  /// Writes `count` samples of each channel to the file `name` + ".scf", replacing an existing one.
  /// Deliberate: the caller's `name` keeps the suffix. A negative count goes into the header as it
  /// is, and no samples follow.
  void writeTrace(Tessaly::String& name, const std::int16_t* const channels[4], std::int32_t count);

 private:
  unsigned char header_[ScfLayout::headerSize] = {};
};

}  // namespace Quillet
