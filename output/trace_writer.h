#pragma once

#include <cstdint>

#include "foundation/scf_layout.h"
#include "output/file_writer.h"

namespace Quillet {

/// Writes four channels of samples as an SCF file of version 2: a header and the samples, without
/// bases, comments or private data.
///
/// The file has the channels in the given order; which base each one belongs to is up to the
/// caller. Errors: a file that can not be created is skipped without a message. After one failure
/// every later file is created but stays empty, so a new TraceWriter is needed. Use: construct,
/// then call writeTrace() as often as wanted.
class TraceWriter : public Tessaly::FileWriter {
 public:
  TraceWriter();
  ~TraceWriter() override;

  /// Writes `count` samples of each channel to the file `name` + ".scf", replacing an existing one.
  /// Borrows the samples. A negative count goes into the header unchanged, and no samples follow.
  /// Deliberate: the caller's `name` keeps the suffix.
  void writeTrace(Tessaly::String& name, const std::int16_t* const channels[4], std::int32_t count);

 private:
  unsigned char header_[ScfLayout::headerSize] = {};
};

}  // namespace Quillet
