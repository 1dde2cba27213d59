#include "output/phd_file.h"

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

// A character and two numbers, each with the separator after it.
constexpr std::size_t longestLine = 2 + 2 * longestDecimal;

void writeBases(Tessaly::FileWriter& writer, const PhdRecord& record) {
  const char* const bases = record.bases.text();
  const char* const qualities = record.qualities.text();
  const std::int32_t* const peaks = record.peaks;
  const std::int32_t qualityCount = record.qualities.length();
  const auto putLines = [=](char* text, std::int32_t begin, std::int32_t end) {
    for (std::int32_t i = begin; i < end; ++i) {
      // Deliberate: a quality byte is a signed number, so that 128..255 are written as -128..-1.
      const std::int32_t quality = i < qualityCount ? static_cast<std::int8_t>(qualities[i]) : 0;
      text = putWord(text, bases[i]);
      text = putShortWord(text, quality);
      text = putShortLine(text, peaks[i]);
    }
    return text;
  };
  writeLines<longestLine>(writer, record.bases.length(), putLines);
}

}  // namespace

void writePhdFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                  const PhdRecord& record) {
  // The result of open() is not needed: after a failure the writer drops what is written. close()
  // is called in any case.
  writer.open(path);
  writeHeader(writer, record);
  writeBases(writer, record);
  writer.write("END_DNA\nEND_SEQUENCE\n");
  writer.close();
}

}  // namespace Quillet
