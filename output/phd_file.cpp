#include "output/phd_file.h"

#include <algorithm>

#include "output/file_writer.h"

namespace Quillet {

namespace {

void writeHeader(Tessaly::FileWriter& writer, const PhdRecord& record) {
  writer.write("BEGIN_SEQUENCE ");
  writer.write(record.sampleName);
  writer.write("\n\nBEGIN_COMMENT\nCHROMAT_FILE: ");
  writer.write(record.sampleName);
  writer.write("\nABI_THUMBPRINT: 0\nPHRED_VERSION: quillet\nCALL_METHOD: ");
  writer.write(record.callerName);
  writer.write("\nQUALITY_LEVELS: 99\nTIME: ");
  writer.write(record.timeText);
  writer.write("\nTRACE_ARRAY_MIN_INDEX: 0\nTRACE_ARRAY_MAX_INDEX: ");
  // The subtraction wraps: no samples give -1. From 2^31 + 1 samples on the index is negative.
  writer.write(static_cast<std::int32_t>(record.pointCount - 1));
  writer.write("\nCHEM: term\nDYE: big\nEND_COMMENT\n\nBEGIN_DNA\n");
}

void writeBase(Tessaly::FileWriter& writer, char base, std::int32_t quality, std::int32_t peak) {
  writer.writeWord(base);
  writer.writeWord(quality);
  writer.writeLine(peak);
}

void writeBases(Tessaly::FileWriter& writer, const PhdRecord& record) {
  const std::int32_t baseCount    = record.bases.length();
  const std::int32_t qualityCount = std::min(record.qualities.length(), baseCount);
  for (std::int32_t i = 0; i < qualityCount; ++i) {
    // Deliberate: a quality byte is a signed number, so that 128..255 are written as -128..-1.
    const auto quality = static_cast<std::int8_t>(record.qualities[i]);
    writeBase(writer, record.bases[i], quality, record.peaks[i]);
  }
  for (std::int32_t i = qualityCount; i < baseCount; ++i) {
    writeBase(writer, record.bases[i], 0, record.peaks[i]);
  }
}

}  // namespace

void writePhdFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                  const PhdRecord& record) {
  // The result of open() is of no use here: a writer that could not open drops what it is given,
  // and close() must come in any case.
  writer.open(path);
  writeHeader(writer, record);
  writeBases(writer, record);
  writer.write("END_DNA\nEND_SEQUENCE\n");
  writer.close();
}

}  // namespace Quillet
