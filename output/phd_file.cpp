#include "output/phd_file.h"

#include <algorithm>

#include "output/file_writer.h"
#include "output/text_lines.h"

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

// A character and two numbers, each with what follows it.
constexpr std::size_t longestLine = 2 + 2 * (Tessaly::longestDecimal + 1);

void writeBases(Tessaly::FileWriter& writer, const PhdRecord& record) {
  const std::int32_t baseCount    = record.bases.length();
  const std::int32_t qualityCount = std::min(record.qualities.length(), baseCount);
  writeLines<longestLine>(writer, baseCount, [&](char* text, std::int32_t i) {
    // Deliberate: a quality byte is a signed number, so that 128..255 are written as -128..-1.
    const std::int32_t quality =
        i < qualityCount ? static_cast<std::int8_t>(record.qualities[i]) : 0;
    text = putWord(text, record.bases[i]);
    text = putWord(text, quality);
    return putLine(text, record.peaks[i]);
  });
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
