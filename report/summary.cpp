#include "report/summary.h"

#include <algorithm>
#include <string_view>

#include "audit/escaped_text.h"

namespace Quillet {

namespace {

constexpr std::size_t stateWidth = 9;  // "converted"
constexpr std::size_t countWidth = 8;

std::string padded(std::string_view text, std::size_t width) {
  return std::string(text) + std::string(width - std::min(width, text.size()), ' ');
}

std::string countLine(SampleState state, std::uint64_t count) {
  const std::string number = std::to_string(count);
  return padded(textOf(state), stateWidth) +
         std::string(countWidth - std::min(countWidth, number.size()), ' ') + number + '\n';
}

/// "cut        clone07 (clone07.ab1): phd"
std::string sampleLine(const SampleRow& row, bool forTerminal) {
  std::string line = padded(textOf(row.state), stateWidth) + "  ";
  appendEscaped(line, row.sample, forTerminal);
  if (row.trace) {
    line += " (";
    appendEscaped(line, *row.trace, forTerminal);
    line += ')';
  }
  if (!row.detail.empty()) {
    line += ": ";
    appendEscaped(line, row.detail, forTerminal);
  }
  return line + '\n';
}

}  // namespace

void Summary::add(const SampleRow& row) {
  counts_.add(row.state);
  std::vector<SampleRow>& samples = samples_[static_cast<std::size_t>(row.state)];
  if (row.state == SampleState::converted || samples.size() == mostSamples) return;
  SampleRow& kept = samples.emplace_back();
  kept.sample = row.sample;
  kept.trace = row.trace;
  kept.state = row.state;
  kept.detail = row.detail;
}

std::string Summary::text(bool forTerminal) const {
  std::string counts;
  std::string samples;
  std::uint64_t notConverted = 0;
  std::uint64_t shown = 0;
  for (int number = 0; number < sampleStateCount; ++number) {
    const auto state = static_cast<SampleState>(number);
    counts += countLine(state, counts_.of(state));
    if (state == SampleState::converted) continue;
    notConverted += counts_.of(state);
    for (const SampleRow& row : samples_[static_cast<std::size_t>(number)]) {
      if (shown == mostSamples) break;
      samples += sampleLine(row, forTerminal);
      ++shown;
    }
  }
  if (notConverted > shown) samples += "and " + std::to_string(notConverted - shown) + " more\n";
  return samples.empty() ? counts : counts + '\n' + samples;
}

}  // namespace Quillet
