#include "output/poly_file.h"

#include "output/file_writer.h"
#include "output/poly_peaks.h"
#include "output/text_lines.h"

namespace Quillet {

namespace {

// Four characters and eight numbers, each with the separator after it.
constexpr std::size_t longestLine = 4 * 2 + 8 * longestDecimal;

/// The normalised heights of the channels that letters name; 0 for a letter that names none.
class NormalisedHeights {
 public:
  explicit NormalisedHeights(const PolyPeaks& found) {
    for (int channel = 0; channel < channelCount; ++channel) {
      heights_[channel] = found.channel(channel).normalisedHeights;
    }
  }

  std::int32_t of(char letter, std::int32_t i) const {
    // Branch-free: the letters are unpredictable. For a letter without a channel, the entry of
    // another channel is read and multiplied by 0.
    const int channel = channelOf(letter);
    return heights_[channel % channelCount][i] * static_cast<std::int32_t>(channel != noChannel);
  }

 private:
  const std::int32_t* heights_[channelCount];
};

std::int32_t signedHeight(std::uint32_t height) {
  return static_cast<std::int32_t>(height);  // at most 65280
}

}  // namespace

void writePolyFile(Tessaly::FileWriter& writer, const Tessaly::String& path,
                   const PolyRecord& record) {
  writer.open(path);
  writer.write(record.sampleName);
  writer.write(" 1 1 1 1 1\n");

  // Locals: a `char` store may alias what lies in an object and force reloads.
  const char* const letters = record.bases.text();
  const std::int32_t* const peaks = record.peaks;
  const NormalisedHeights normalised(record.found);
  const char* const secondLetters = record.found.secondPeaks().bases;
  const std::int32_t* const secondPositions = record.found.secondPeaks().positions;
  const std::uint32_t* const heightsOfA = record.found.channel(0).heights;
  const std::uint32_t* const heightsOfC = record.found.channel(1).heights;
  const std::uint32_t* const heightsOfG = record.found.channel(2).heights;
  const std::uint32_t* const heightsOfT = record.found.channel(3).heights;

  const auto putLines = [=](char* text, std::int32_t begin, std::int32_t end) {
    for (std::int32_t i = begin; i < end; ++i) {
      text = putWord(text, letters[i]);
      text = putShortWord(text, peaks[i]);
      text = putWord(text, normalised.of(letters[i], i));
      text = putWord(text, '0');
      text = putWord(text, secondLetters[i]);
      text = putShortWord(text, secondPositions[i]);
      text = putWord(text, normalised.of(secondLetters[i], i));
      text = putWord(text, '0');
      text = putShortWord(text, signedHeight(heightsOfA[i]));
      text = putShortWord(text, signedHeight(heightsOfC[i]));
      text = putShortWord(text, signedHeight(heightsOfG[i]));
      text = putShortLine(text, signedHeight(heightsOfT[i]));
    }
    return text;
  };
  writeLines<longestLine>(writer, record.bases.length(), putLines);
  writer.close();
}

}  // namespace Quillet
