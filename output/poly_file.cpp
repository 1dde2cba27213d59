#include "output/poly_file.h"

#include "foundation/channels.h"
#include "output/file_writer.h"
#include "output/poly_peaks.h"
#include "output/text_lines.h"

namespace Quillet {

namespace {

// Four characters and eight numbers, each with what follows it.
constexpr std::size_t longestLine = 4 * 2 + 8 * Tessaly::longestDecimal;

/// The normalised heights of the channels that `letters` name, for the bases from `begin` to before
/// `end`. They are looked up apart from putting the text together, where every look-up would have
/// to be waited for.
void normalisedHeights(const PolyPeaks& found, const char* letters, std::int32_t begin,
                       std::int32_t end, std::int32_t* heights) {
  const std::int32_t* const normAmp[4] = {found.normAmp(0), found.normAmp(1), found.normAmp(2),
                                          found.normAmp(3)};
  for (std::int32_t i = begin; i < end; ++i) {
    const int channel = channelOf(letters[i]);
    // Some entry is read in any case, since the processor could not foresee a jump.
    *heights++ = normAmp[channel & 3][i] * static_cast<std::int32_t>(channel != noChannel);
  }
}

std::int32_t signedHeight(std::uint32_t height) {
  return static_cast<std::int32_t>(height);  // at most 65280
}

}  // namespace

void writePolyFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                   const Tessaly::String& sampleName, const Tessaly::String& bases,
                   const std::int32_t* peaks, const PolyPeaks& found) {
  writer.open(path);
  writer.write(sampleName);
  writer.write(" 1 1 1 1 1\n");

  // Pointers of their own: what lies in an object would be read anew behind every character put,
  // which might have changed it.
  const char* const letters = bases.text();
  const char* const secondLetters = found.secondBase();
  const std::int32_t* const secondPeaks = found.secondPos();
  const std::uint32_t* const heightsOfA = found.peakAmp(0);
  const std::uint32_t* const heightsOfC = found.peakAmp(1);
  const std::uint32_t* const heightsOfG = found.peakAmp(2);
  const std::uint32_t* const heightsOfT = found.peakAmp(3);

  const auto putLines = [=, &found](char* text, std::int32_t begin, std::int32_t end) {
    std::int32_t called[blockOfLines];
    std::int32_t second[blockOfLines];
    normalisedHeights(found, letters, begin, end, called);
    normalisedHeights(found, secondLetters, begin, end, second);

    for (std::int32_t i = begin; i < end; ++i) {
      text = putWord(text, letters[i]);
      text = putShortWord(text, peaks[i]);
      text = putWord(text, called[i - begin]);
      text = putWord(text, '0');
      text = putWord(text, secondLetters[i]);
      text = putShortWord(text, secondPeaks[i]);
      text = putWord(text, second[i - begin]);
      text = putWord(text, '0');
      text = putShortWord(text, signedHeight(heightsOfA[i]));
      text = putShortWord(text, signedHeight(heightsOfC[i]));
      text = putShortWord(text, signedHeight(heightsOfG[i]));
      text = putShortLine(text, signedHeight(heightsOfT[i]));
    }
    return text;
  };
  writeLines<longestLine>(writer, bases.length(), putLines);
  writer.close();
}

}  // namespace Quillet
