#include "report/json_table.h"

#include <nlohmann/json.hpp>

#include "app/version.h"
#include "report/row_values.h"

namespace Quillet {

namespace {

using Json = nlohmann::ordered_json;

std::string dumped(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string jsonStart(const std::string& project) {
  return "{\"quillet\":" + dumped(versionText) + ",\"project\":" + dumped(project) +
         ",\"samples\":[";
}

std::string jsonRow(const SampleRow& row, bool isFirst) {
  return (isFirst ? "\n" : ",\n") + dumped(rowValues(row));
}

std::string jsonEnd(const StateCounts& counts) {
  Json object;
  for (const SampleState state : sampleStates) {
    object[textOf(state)] = counts.of(state);
  }
  return "\n],\n\"counts\":" + dumped(object) + "}\n";
}

}  // namespace Quillet
