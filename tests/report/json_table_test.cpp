#include "report/json_table.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "app/version.h"
#include "report/tsv_table.h"
#include "tests/report/made_rows.h"

namespace {

using Json = nlohmann::ordered_json;

Json table(const std::vector<Quillet::SampleRow>& rows, const std::string& project = "/lab/p") {
  std::string text = Quillet::jsonStart(project);
  Quillet::StateCounts counts;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    text += Quillet::jsonRow(rows[i], i == 0);
    counts.add(rows[i].state);
  }
  return Json::parse(text + Quillet::jsonEnd(counts));
}

std::vector<std::string> keysOf(const Json& object) {
  std::vector<std::string> keys;
  for (const auto& item : object.items()) keys.push_back(item.key());
  return keys;
}

std::vector<std::string> tsvColumns() {
  std::vector<std::string> names;
  std::istringstream header(Quillet::tsvHeader());
  for (std::string name; header >> name;) names.push_back(name);
  return names;
}

}  // namespace

TEST(JsonTable, HoldsVersionProjectSamplesAndCounts) {
  const Json json = table({fullRow(), orphanRow(), fullRow()});

  EXPECT_EQ(keysOf(json), (std::vector<std::string>{"quillet", "project", "samples", "counts"}));
  EXPECT_EQ(json["quillet"], Quillet::versionText);
  EXPECT_EQ(json["project"], "/lab/p");
  EXPECT_EQ(json["samples"].size(), 3U);
  EXPECT_EQ(json["counts"], Json::parse(R"({"differs": 0, "borrowed": 0, "cut": 2, "no-poly": 0,
    "orphan": 1, "invalid": 0, "refused": 0, "hidden": 0, "waiting": 0, "converted": 0})"));
}

TEST(JsonTable, OfAnEmptyProjectHasNoSamples) {
  const Json json = table({});

  EXPECT_TRUE(json["samples"].is_array());
  EXPECT_TRUE(json["samples"].empty());
  EXPECT_EQ(json["counts"]["converted"], 0);
}

TEST(JsonTable, GivesARowTheNamesOfTheColumns) {
  const Json json = table({fullRow(), orphanRow()});

  EXPECT_EQ(keysOf(json["samples"][0]), tsvColumns());
  EXPECT_EQ(keysOf(json["samples"][1]), tsvColumns());
}

TEST(JsonTable, WritesNumbersAsNumbersAndPositionsAsAnArray) {
  const Json json = table({fullRow()});

  EXPECT_EQ(json["samples"][0], Json::parse(R"({"sample": "clone01", "trace": "clone01.ab1.gz",
    "state": "cut", "detail": "phd,poly", "bases": 735, "mean_quality": 41.3, "q20": 700,
    "contiguous": 650, "trim_start": 12, "trim_end": 690, "no_calls": 3, "mixed": 2,
    "mixed_positions": [45, 101], "caller": "caller 1.4", "plate": "P07", "well": "B01",
    "capillary": 41, "signal_to_noise": 512, "instrument": "machine 3",
    "run_date": "2026-11-21"})"));
}

TEST(JsonTable, WritesNullForWhatIsUnknown) {
  const Json row = table({orphanRow()})["samples"][0];

  for (const auto& item : row.items()) {
    const bool isKnown = item.key() == "sample" || item.key() == "state" || item.key() == "detail";
    EXPECT_EQ(item.value().is_null(), !isKnown) << item.key();
  }
}

TEST(JsonTable, HoldsAnyBytes) {
  Quillet::SampleRow row = orphanRow();
  row.sample = std::string("\"quoted\"\\\n\x01") + '\0' + "\xC3\xA9\xFF!";
  row.notes.plate = "\xC3";

  const Json json = table({row}, "/lab/\xFE");

  EXPECT_EQ(json["samples"][0]["sample"],
            std::string("\"quoted\"\\\n\x01") + '\0' + "\xC3\xA9\xEF\xBF\xBD!");
  EXPECT_EQ(json["samples"][0]["plate"], "\xEF\xBF\xBD");
  EXPECT_EQ(json["project"], "/lab/\xEF\xBF\xBD");
}
