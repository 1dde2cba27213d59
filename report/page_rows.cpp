#include "report/page_rows.h"

#include <nlohmann/json.hpp>

#include "app/version.h"
#include "report/row_values.h"
#include "report/state_texts.h"

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

Json states() {
  Json list = Json::array();
  for (const SampleState state : sampleStates) {
    list.push_back({{"name", textOf(state)},
                    {"severity", textOf(severityOf(state))},
                    {"text", adviceOf(state)}});
  }
  return list;
}

Json columns() {
  Json names = Json::array();
  const Json values = rowValues({});
  for (const auto& value : values.items()) names.push_back(value.key());
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
  for (const auto& value : rowValues(row)) values.push_back(value);
  values.push_back(strip);
  values.push_back(hasPicture ? 1 : 0);
  return dumped(values);
}

std::string pageRowsEnd() { return "\n]}\n"; }

}  // namespace Quillet
