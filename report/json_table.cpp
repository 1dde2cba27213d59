#include "report/json_table.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "app/version.h"
#include "report/tsv_table.h"

namespace Quillet {

namespace {

using Json = nlohmann::ordered_json;

std::string dumped(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

void putFigures(Json& object, const std::optional<CallFigures>& figures) {
  if (!figures) {
    for (const char* name : {"mean_quality", "q20", "contiguous", "trim_start", "trim_end",
                             "no_calls", "mixed", "mixed_positions"}) {
      object[name] = nullptr;
    }
    return;
  }
  // The number that the TSV shows, not one that differs from it further down.
  object["mean_quality"] = std::strtod(meanQualityText(figures->meanQuality).c_str(), nullptr);
  object["q20"] = figures->q20;
  object["contiguous"] = figures->contiguous;
  object["trim_start"] = figures->trimStart;
  object["trim_end"] = figures->trimEnd;
  object["no_calls"] = figures->noCalls;
  object["mixed"] = figures->mixed.size();
  object["mixed_positions"] = mixedPositions(*figures);
}

}  // namespace

std::string jsonStart(const std::string& project) {
  return "{\"quillet\":" + dumped(versionText) + ",\"project\":" + dumped(project) +
         ",\"samples\":[";
}

std::string jsonRow(const SampleRow& row, bool isFirst) {
  Json object;
  object["sample"] = row.sample;
  object["trace"] = orNull(row.trace);
  object["state"] = textOf(row.state);
  object["detail"] = row.detail;
  object["bases"] = orNull(row.bases);
  putFigures(object, row.figures);
  object["caller"] = orNull(row.caller);
  object["plate"] = orNull(row.notes.plate);
  object["well"] = orNull(row.notes.well);
  object["capillary"] = orNull(row.notes.capillary);
  object["signal_to_noise"] = orNull(row.notes.signalToNoise);
  object["instrument"] = orNull(row.notes.instrument);
  object["run_date"] = orNull(row.notes.runDate);
  return (isFirst ? "\n" : ",\n") + dumped(object);
}

std::string jsonEnd(const StateCounts& counts) {
  Json object;
  for (int number = 0; number < sampleStateCount; ++number) {
    const auto state = static_cast<SampleState>(number);
    object[textOf(state)] = counts.of(state);
  }
  return "\n],\n\"counts\":" + dumped(object) + "}\n";
}

}  // namespace Quillet
