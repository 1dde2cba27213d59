#include "report/summary.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

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

std::string Summary::text(bool forTerminal) const {
  std::string text;
  for (const SampleState state : sampleStates) {
    text += countLine(state, counts().of(state));
  }
  const std::vector<const SampleRow*> rows = worst_.rows();
  if (!rows.empty()) text += '\n';
  for (const SampleRow* row : rows) text += sampleLine(*row, forTerminal);
  const std::uint64_t leftOut = worst_.leftOut();
  if (leftOut > 0) text += "and " + std::to_string(leftOut) + " more\n";
  return text;
}

}  // namespace Quillet
