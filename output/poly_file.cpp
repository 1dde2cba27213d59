#include "output/poly_file.h"

#include "output/file_writer.h"
#include "output/poly_peaks.h"
#include "output/text_lines.h"

namespace Quillet {

namespace {

// Four characters and eight numbers, each with what follows it.
constexpr std::size_t longestLine = 4 * 2 + 8 * (Tessaly::longestDecimal + 1);

std::int32_t normalisedHeight(const PolyPeaks& found, char letter, std::int32_t base) {
  const int channel = channelOf(letter);
  // Some entry is read in any case, since the processor could not foresee a jump.
  const std::int32_t height = found.normAmp(channel & 3)[base];
  return channel == noChannel ? 0 : height;
}

int heightAt(const PolyPeaks& found, int channel, std::int32_t base) {
  return static_cast<int>(found.peakAmp(channel)[base]);  // at most 65280
}

}  // namespace

void writePolyFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                   const Tessaly::String& sampleName, const Tessaly::String& bases,
                   const std::int32_t* peaks, const PolyPeaks& found) {
  writer.open(path);
  writer.write(sampleName);
  writer.write(" 1 1 1 1 1\n");

  writeLines<longestLine>(writer, bases.length(), [&](char* text, std::int32_t i) {
    const char secondBase = found.secondBase()[i];
    text                  = putWord(text, bases[i]);
    text                  = putWord(text, peaks[i]);
    text                  = putWord(text, normalisedHeight(found, bases[i], i));
    text                  = putWord(text, '0');
    text                  = putWord(text, secondBase);
    text                  = putWord(text, found.secondPos()[i]);
    text                  = putWord(text, normalisedHeight(found, secondBase, i));
    text                  = putWord(text, '0');
    text                  = putWord(text, heightAt(found, 0, i));
    text                  = putWord(text, heightAt(found, 1, i));
    text                  = putWord(text, heightAt(found, 2, i));
    return putLine(text, heightAt(found, 3, i));
  });
  writer.close();
}

}  // namespace Quillet
