#include "report/page_rows.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "app/version.h"
#include "report/state_texts.h"
#include "report/tsv_table.h"
#include "tests/report/made_rows.h"

namespace {

using Json = nlohmann::ordered_json;

std::string text(const std::vector<Quillet::SampleRow>& rows, const std::string& project = "p") {
  std::string json = Quillet::pageRowsStart(project, true);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    json += (i == 0 ? "" : ",\n") + Quillet::pageRow(rows[i], "zz9", i % 2 == 0);
  }
  return json + Quillet::pageRowsEnd();
}

/// The fields of the row in the TSV.
std::vector<std::string> tsvFields(const Quillet::SampleRow& row) {
  std::string line = Quillet::tsvLine(row, false);
  line.pop_back();
  std::vector<std::string> fields;
  std::istringstream rest(line + '\t');
  for (std::string field; std::getline(rest, field, '\t');) fields.push_back(field);
  return fields;
}

/// A value as the TSV writes it.
std::string asField(const Json& value) {
  if (value.is_null()) return "";
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_array()) return value.dump();
  std::string list;
  for (const Json& item : value) list += (list.empty() ? "" : ",") + item.dump();
  return list;
}

}  // namespace

TEST(PageRows, BeginWithWhatHoldsForAllOfThem) {
  const Json page = Json::parse(text({}, "lab run"));

  EXPECT_EQ(page["version"], Quillet::versionText);
  EXPECT_EQ(page["project"], "lab run");
  EXPECT_EQ(page["pictures"], true);
  EXPECT_TRUE(page["rows"].is_array());
  EXPECT_TRUE(page["rows"].empty());
  EXPECT_EQ(page.size(), 6U);
  EXPECT_EQ(Json::parse(Quillet::pageRowsStart("", false) + Quillet::pageRowsEnd())["pictures"],
            false);
}

TEST(PageRows, NameTheStatesWorstFirst) {
  const Json states = Json::parse(text({}))["states"];

  const std::vector<std::string> names{"differs", "borrowed", "cut",    "no-poly", "orphan",
                                       "invalid", "refused",  "hidden", "waiting", "converted"};
  ASSERT_EQ(states.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto state = static_cast<Quillet::SampleState>(i);
    EXPECT_EQ(states[i], Json({{"name", names[i]},
                               {"severity", textOf(Quillet::severityOf(state))},
                               {"text", Quillet::adviceOf(state)}}));
  }
}

TEST(PageRows, HaveTheColumnsOfTheTsv) {
  const Json page = Json::parse(text({fullRow(), orphanRow()}));

  std::string header;
  for (const Json& name : page["columns"]) header += name.get<std::string>() + '\t';
  header.back() = '\n';
  EXPECT_EQ(header, Quillet::tsvHeader());
  const std::vector<Quillet::SampleRow> rows{fullRow(), orphanRow()};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::vector<std::string> fields = tsvFields(rows[i]);
    ASSERT_EQ(page["rows"][i].size(), fields.size() + 2);
    for (std::size_t column = 0; column < fields.size(); ++column) {
      EXPECT_EQ(asField(page["rows"][i][column]), fields[column]) << page["columns"][column];
    }
  }
}

TEST(PageRows, EndWithTheStripAndWhetherThereIsAPicture) {
  const Json rows = Json::parse(text({fullRow(), orphanRow()}))["rows"];

  EXPECT_EQ(rows[0][20], "zz9");
  EXPECT_EQ(rows[0][21], 1);
  EXPECT_EQ(rows[1][21], 0);
}

TEST(PageRows, WriteNumbersAsNumbersAndPositionsAsAnArray) {
  EXPECT_EQ(Json::parse(Quillet::pageRow(fullRow(), "z", true)),
            Json::parse(R"(["clone01", "clone01.ab1.gz", "cut", "phd,poly", 735, 41.3, 700, 650, 12,
              690, 3, 2, [45, 101], "caller 1.4", "P07", "B01", 41, 512, "machine 3", "2026-11-21",
              "z", 1])"));
  EXPECT_EQ(Json::parse(Quillet::pageRow(orphanRow(), "", false)),
            Json::parse(R"(["old", null, "orphan", "poly", null, null, null, null, null, null, null,
              null, null, null, null, null, null, null, null, null, "", 0])"));
}

TEST(PageRows, HoldAnyTextWithoutAWayOutOfTheirElement) {
  const std::vector<std::string> names{"<img src=x onerror=alert(1)>",
                                       "--><!--<script>",
                                       "</script>",
                                       "]]>",
                                       "__proto__",
                                       "a:12%41#b",
                                       "\"\\/\n\r\t\b\f\x01\x7F",
                                       "\xE2\x80\xA8\xE2\x80\xA9",
                                       "\xE2\x80\xAE\xC2\x9B",
                                       "\xF0\x9F\xA7\xAC",
                                       std::string("a\0b", 3)};
  for (const std::string& name : names) {
    Quillet::SampleRow row = fullRow();
    row.sample = name;
    row.trace = name;
    row.detail = name;
    row.caller = name;
    row.notes.plate = row.notes.well = row.notes.instrument = row.notes.runDate = name;

    const std::string json = text({row}, name);

    EXPECT_TRUE(std::all_of(json.begin(), json.end(), [](char byte) {
      return byte == '\n' || (byte >= ' ' && byte < '\x7F' && byte != '<');
    })) << json;
    const Json page = Json::parse(json);
    EXPECT_EQ(page["project"], name);
    for (const std::size_t column : {0U, 1U, 3U, 13U, 14U, 15U, 18U, 19U}) {
      EXPECT_EQ(page["rows"][0][column], name);
    }
  }
}

TEST(PageRows, ReplaceBytesThatAreNoUtf8) {
  Quillet::SampleRow row = orphanRow();
  row.sample = "a\xFF\xC3";

  const Json page = Json::parse(text({row}, "\xFE<"));

  EXPECT_EQ(page["rows"][0][0], "a\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(page["project"], "\xEF\xBF\xBD<");
}
