#include "audit/expected_result.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string_view>

#include "audit/redirected_writer.h"
#include "output/phd_file.h"
#include "output/poly_file.h"

namespace Quillet {

namespace {

const Tessaly::String noText;  // of the time, of paths that are not opened, of no bases

constexpr std::string_view lastLine = "END_SEQUENCE\n";
constexpr std::string_view ending = "END_DNA\nEND_SEQUENCE\n";
constexpr std::string_view afterTime = "\nTRACE_ARRAY_MIN_INDEX";

/// Compares what is written with a result file, from where that stands. What comes after the first
/// difference is passed over.
class ComparingOutput : public RedirectedWriter {
 public:
  /// The first `skipped` bytes that are written are not compared.
  explicit ComparingOutput(ResultFile& file, std::size_t skipped = 0)
      : file_(file), skipped_(skipped) {}

  /// Bytes that were to be compared.
  std::size_t written() const { return written_; }
  /// How many of them, from the first on, the file holds.
  std::size_t matched() const { return matched_; }

 protected:
  void take(const char* bytes, std::size_t count) override {
    const std::size_t passed = std::min(skipped_, count);
    skipped_ -= passed;
    bytes += passed;
    count -= passed;
    if (matched_ == written_ && count > 0) matched_ += file_.match(bytes, count);
    written_ += count;
  }

 private:
  ResultFile& file_;
  std::size_t skipped_;
  std::size_t written_ = 0;
  std::size_t matched_ = 0;
};

Channels copyOf(const Channels& channels) {
  Channels copy(channels.pointCount());
  for (int channel = 0; channel < channelCount; ++channel) {
    std::ranges::copy(channels[channel], copy[channel].begin());
  }
  return copy;
}

bool isSpelled(std::string_view text, std::int32_t value) {
  char digits[Tessaly::String::integerTextSize];
  const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), value);
  return text == std::string_view(digits, static_cast<std::size_t>(end - digits));
}

}  // namespace

ExpectedResult::ExpectedResult(const Tessaly::String& sample, const TraceContent& content,
                               PolyPeaks& peaks)
    : sample_(sample), content_(content), peaks_(peaks) {
  const BaseCalls& calls = content.calls;
  if (holdsCalls()) {
    // As TraceFile::getBaseCalls() hands calls over: both texts end at their first zero byte.
    const auto count = static_cast<std::int32_t>(calls.count);
    bases_.setPrefix(calls.bases.get(), count);
    holdsQualities_ = calls.hasUsableQualities();
    if (holdsQualities_) {
      qualities_.setPrefix(reinterpret_cast<const char*>(calls.qualities.get()), count);
    }
    Channels rescaled = copyOf(content.channels);
    peaks.compute({rescaled, bases_, positions()});
  }
  unusable_ = firstUnusableQuality(bases_, qualities_);

  KeptOutput withoutBases;
  writePhdFile(withoutBases, noText,
               {.sampleName = sample_,
                .callerName = content_.callerName,
                .timeText = noText,
                .pointCount = content_.channels.pointCount(),
                .bases = noText,
                .qualities = noText,
                .peaks = nullptr});
  header_ = withoutBases.bytes();
  header_.resize(header_.size() - ending.size());
  timeOffset_ = header_.rfind(afterTime);
}

const std::int32_t* ExpectedResult::positions() const {
  // A stored index of 2^31 or more is negative from here on.
  return reinterpret_cast<const std::int32_t*>(content_.calls.peaks.get());
}

void ExpectedResult::writePhd(Tessaly::FileWriter& writer) const {
  writePhdFile(writer, noText,
               {.sampleName = sample_,
                .callerName = content_.callerName,
                .timeText = noText,
                .pointCount = content_.channels.pointCount(),
                .bases = bases_,
                .qualities = qualities_,
                .peaks = positions()});
}

void ExpectedResult::writePoly(Tessaly::FileWriter& writer) const {
  writePolyFile(writer, noText,
                {.sampleName = sample_, .bases = bases_, .peaks = positions(), .found = peaks_});
}

bool ExpectedResult::equalsPhd(ResultFile& file) const {
  const std::size_t restSize = header_.size() - timeOffset_;
  if (file.match(header_.data(), timeOffset_) < timeOffset_ || !file.moveToLineFeed() ||
      file.match(header_.data() + timeOffset_, restSize) < restSize) {
    return false;
  }
  const std::int64_t linesOffset = file.position();
  ComparingOutput output(file, header_.size());
  writePhd(output);
  if (output.matched() == output.written() && file.isAtEnd()) return true;

  // What follows END_DNA may hold blocks of other tools.
  const std::size_t lineBytes = output.written() - lastLine.size();
  if (output.matched() < lineBytes) return false;
  const auto rest = file.textFrom(linesOffset + static_cast<std::int64_t>(lineBytes));
  return rest && isPhdEnding(*rest);
}

bool ExpectedResult::equalsPoly(ResultFile& file) const {
  ComparingOutput output(file);
  writePoly(output);
  return output.matched() == output.written() && file.isAtEnd();
}

bool ExpectedResult::equalsHeader(std::string_view text) const {
  const std::string_view header = header_;
  if (!text.starts_with(header.substr(0, timeOffset_))) return false;
  text.remove_prefix(timeOffset_);
  const std::size_t timeEnd = text.find('\n');
  return timeEnd != std::string_view::npos && text.substr(timeEnd) == header.substr(timeOffset_);
}

ExpectedResult::Differences ExpectedResult::differencesIn(const PhdParts& phd) const {
  Differences differences;
  differences.header = !equalsHeader(phd.header);
  const auto count = static_cast<std::size_t>(bases_.length());
  if (phd.baseCount != count) {
    differences.bases = differences.qualities = differences.positions = true;
    return differences;
  }
  std::string_view lines = phd.lines;
  PhdLine line;
  for (std::int32_t i = 0; takePhdLine(lines, line); ++i) {
    const int quality = i < qualities_.length() ? static_cast<std::int8_t>(qualities_[i]) : 0;
    differences.bases |= line.base != bases_[i];
    differences.qualities |= !isSpelled(line.quality, quality);
    differences.positions |= !isSpelled(line.position, positions()[i]);
  }
  return differences;
}

}  // namespace Quillet
