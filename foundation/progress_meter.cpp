#include "foundation/progress_meter.h"

#include <iostream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace Tessaly {

namespace {

constexpr std::string_view eraseLine = "\x1b[2K";
constexpr std::string_view lineUp = "\x1b[A";
constexpr std::size_t percentageWidth = 4;

}  // namespace

ProgressMeter::ProgressMeter(std::int32_t itemCount)
    : ProgressMeter(itemCount, isatty(STDERR_FILENO) != 0) {}

ProgressMeter::ProgressMeter(std::int32_t itemCount, bool onTerminal)
    : onTerminal_(onTerminal),
      itemCount_(itemCount),
      scaledCount_(100 * static_cast<std::int64_t>(itemCount)) {}

void ProgressMeter::start() {
  // Deliberate: percentage and threshold stay. A second start goes on from them.
  progress_ = 0;
  draw(nullptr);
}

void ProgressMeter::step(const char* label) {
  progress_ += 100;
  // Without items there is no percentage, and the threshold could not grow.
  if (threshold_ >= progress_ || itemCount_ <= 0) return;
  // The number of whole percents that brings the threshold up to the progress.
  const std::int64_t passed = (progress_ - threshold_ + itemCount_ - 1) / itemCount_;
  threshold_ += passed * itemCount_;
  percent_ += passed;
  draw(label);
}

void ProgressMeter::setCount(std::int32_t itemCount) {
  itemCount_ = itemCount;
  threshold_ = 0;
}

void ProgressMeter::clearLine() const {
  if (onTerminal_) std::cerr << eraseLine;
}

void ProgressMeter::draw(const char* label) const {
  // One write for the whole line: the stream is unbuffered, so each write is a system call.
  const std::string number = std::to_string(percent_);
  std::string line;
  if (onTerminal_) line += eraseLine;
  if (number.size() < percentageWidth) line.append(percentageWidth - number.size(), ' ');
  line += number;
  line += "% done";
  if (label != nullptr) line.append(" (").append(label).append(")");
  // Deliberate: one line up, then the newline. The cursor ends at the start of this line.
  if (onTerminal_) line += lineUp;
  line += '\n';
  std::cerr.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

}  // namespace Tessaly
