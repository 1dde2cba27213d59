#include "report/row_values.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>

#include "report/tsv_table.h"

namespace Quillet {

namespace {

using Json = nlohmann::ordered_json;

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

Json rowValues(const SampleRow& row) {
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
  return object;
}

}  // namespace Quillet
