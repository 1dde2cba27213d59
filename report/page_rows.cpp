#include "report/page_rows.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "app/version.h"
#include "report/state_texts.h"
#include "report/tsv_table.h"

namespace Quillet {

namespace {

using Json = nlohmann::ordered_json;

std::string dumped(const Json& value) {
  const std::string text = value.dump(-1, ' ', true, Json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size());
  for (const char character : text) {
    if (character == '<') {
      safe += "\\u003c";
    } else {
      safe += character;
    }
  }
  return safe;
}

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

constexpr int figureColumns = 8;

void putFigures(Json& values, const CallFigures& figures) {
  // The number that the TSV shows, not one that differs from it further down.
  values.push_back(std::strtod(meanQualityText(figures.meanQuality).c_str(), nullptr));
  values.push_back(figures.q20);
  values.push_back(figures.contiguous);
  values.push_back(figures.trimStart);
  values.push_back(figures.trimEnd);
  values.push_back(figures.noCalls);
  values.push_back(figures.mixed.size());
  values.push_back(mixedPositions(figures));
}

Json states() {
  Json list = Json::array();
  for (int number = 0; number < sampleStateCount; ++number) {
    const auto state = static_cast<SampleState>(number);
    list.push_back(
        {{"name", textOf(state)}, {"severity", severityOf(state)}, {"text", adviceOf(state)}});
  }
  return list;
}

Json columns() {
  Json names = Json::array();
  std::istringstream header(tsvHeader());
  for (std::string name; header >> name;) names.push_back(name);
  return names;
}

}  // namespace

std::string pageRowsStart(const std::string& projectName, bool hasPictures) {
  Json head;
  head["version"] = versionText;
  head["project"] = projectName;
  head["pictures"] = hasPictures;
  head["states"] = states();
  head["columns"] = columns();
  std::string text = dumped(head);
  text.back() = ',';  // in place of the brace at the end
  return text + "\n\"rows\":[\n";
}

std::string pageRow(const SampleRow& row, const std::string& strip, bool hasPicture) {
  Json values = Json::array();
  values.push_back(row.sample);
  values.push_back(orNull(row.trace));
  values.push_back(textOf(row.state));
  values.push_back(row.detail);
  values.push_back(orNull(row.bases));
  if (row.figures) {
    putFigures(values, *row.figures);
  } else {
    for (int column = 0; column < figureColumns; ++column) values.push_back(nullptr);
  }
  values.push_back(orNull(row.caller));
  values.push_back(orNull(row.notes.plate));
  values.push_back(orNull(row.notes.well));
  values.push_back(orNull(row.notes.capillary));
  values.push_back(orNull(row.notes.signalToNoise));
  values.push_back(orNull(row.notes.instrument));
  values.push_back(orNull(row.notes.runDate));
  values.push_back(strip);
  values.push_back(hasPicture ? 1 : 0);
  return dumped(values);
}

std::string pageRowsEnd() { return "\n]}\n"; }

}  // namespace Quillet
