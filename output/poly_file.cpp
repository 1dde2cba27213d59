#include "output/poly_file.h"

#include "output/file_writer.h"
#include "output/poly_peaks.h"

namespace Quillet {

namespace {

std::int32_t normalisedHeight(const PolyPeaks& found, char letter, std::int32_t base) {
  const int channel = channelOf(letter);
  return channel == noChannel ? 0 : found.normAmp(channel)[base];
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

  for (std::int32_t i = 0; i < bases.length(); ++i) {
    const char secondBase = found.secondBase()[i];
    writer.writeWord(bases[i]);
    writer.writeWord(peaks[i]);
    writer.write(normalisedHeight(found, bases[i], i));
    writer.write(" 0 ");
    writer.writeWord(secondBase);
    writer.writeWord(found.secondPos()[i]);
    writer.write(normalisedHeight(found, secondBase, i));
    writer.write(" 0 ");
    writer.writeWord(heightAt(found, 0, i));
    writer.writeWord(heightAt(found, 1, i));
    writer.writeWord(heightAt(found, 2, i));
    writer.writeLine(heightAt(found, 3, i));
  }
  writer.close();
}

}  // namespace Quillet
