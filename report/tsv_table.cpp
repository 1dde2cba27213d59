#include "report/tsv_table.h"

#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "audit/escaped_text.h"

namespace Quillet {

namespace {

/// One line in the making.
class TsvLine {
 public:
  explicit TsvLine(bool forTerminal) : forTerminal_(forTerminal) {}

  void text(std::string_view value) {
    separate();
    appendEscaped(line_, value, forTerminal_);
  }
  void known(const std::optional<std::string>& value) { text(value ? *value : std::string_view()); }
  template <typename Number>
  void number(Number value) {
    text(std::to_string(value));
  }
  template <typename Number>
  void knownNumber(const std::optional<Number>& value) {
    text(value ? std::to_string(*value) : std::string());
  }
  void positions(const std::vector<std::uint32_t>& values) {
    separate();
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i > 0) line_ += ',';
      line_ += std::to_string(values[i]);
    }
  }
  void empty(int columns) {
    for (int i = 0; i < columns; ++i) text("");
  }
  std::string finished() { return std::move(line_) + '\n'; }

 private:
  void separate() {
    if (!isFirst_) line_ += '\t';
    isFirst_ = false;
  }

  std::string line_;
  bool forTerminal_;
  bool isFirst_ = true;
};

constexpr int figureColumns = 8;

void putFigures(TsvLine& line, const CallFigures& figures) {
  line.text(meanQualityText(figures.meanQuality));
  line.number(figures.q20);
  line.number(figures.contiguous);
  line.number(figures.trimStart);
  line.number(figures.trimEnd);
  line.number(figures.noCalls);
  line.number(figures.mixed.size());
  line.positions(mixedPositions(figures));
}

}  // namespace

std::string tsvHeader() {
  return "sample\ttrace\tstate\tdetail\tbases\tmean_quality\tq20\tcontiguous\ttrim_start\ttrim_"
         "end\t"
         "no_calls\tmixed\tmixed_positions\tcaller\tplate\twell\tcapillary\tsignal_to_noise\t"
         "instrument\trun_date\n";
}

std::string tsvLine(const SampleRow& row, bool forTerminal) {
  TsvLine line(forTerminal);
  line.text(row.sample);
  line.known(row.trace);
  line.text(textOf(row.state));
  line.text(row.detail);
  line.knownNumber(row.bases);
  if (row.figures) {
    putFigures(line, *row.figures);
  } else {
    line.empty(figureColumns);
  }
  line.known(row.caller);
  line.known(row.notes.plate);
  line.known(row.notes.well);
  line.knownNumber(row.notes.capillary);
  line.knownNumber(row.notes.signalToNoise);
  line.known(row.notes.instrument);
  line.known(row.notes.runDate);
  return line.finished();
}

std::string meanQualityText(double meanQuality) {
  char text[32];  // a quality is at most 127
  std::snprintf(text, sizeof text, "%.1f", meanQuality);
  return text;
}

}  // namespace Quillet
