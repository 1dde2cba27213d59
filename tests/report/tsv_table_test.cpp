#include "report/tsv_table.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "tests/report/made_rows.h"

TEST(TsvTable, NamesItsColumns) {
  EXPECT_EQ(Quillet::tsvHeader(),
            "sample\ttrace\tstate\tdetail\tbases\tmean_quality\tq20\tcontiguous\ttrim_start\t"
            "trim_end\tno_calls\tmixed\tmixed_positions\tcaller\tplate\twell\tcapillary\t"
            "signal_to_noise\tinstrument\trun_date\n");
}

TEST(TsvTable, WritesEachValueUnderItsName) {
  EXPECT_EQ(Quillet::tsvLine(fullRow(), false),
            "clone01\tclone01.ab1.gz\tcut\tphd,poly\t735\t41.3\t700\t650\t12\t690\t3\t2\t45,101\t"
            "caller 1.4\tP07\tB01\t41\t512\tmachine 3\t2026-11-21\n");
}

TEST(TsvTable, LeavesEmptyWhatIsUnknown) {
  EXPECT_EQ(Quillet::tsvLine(orphanRow(), false),
            "old\t\torphan\tpoly" + std::string(16, '\t') + '\n');
}

TEST(TsvTable, HasAsManyFieldsInEachLine) {
  const std::string header = Quillet::tsvHeader();
  const auto tabs = [](const std::string& line) {
    return std::count(line.begin(), line.end(), '\t');
  };

  EXPECT_EQ(tabs(Quillet::tsvLine(fullRow(), false)), tabs(header));
  EXPECT_EQ(tabs(Quillet::tsvLine(orphanRow(), false)), tabs(header));
}

TEST(TsvTable, SaysThatATraceHasNoCalls) {
  Quillet::SampleRow row = rowOf("x", Quillet::SampleState::refused, "no calls");
  row.bases = 0;
  row.caller = "";

  EXPECT_EQ(Quillet::tsvLine(row, false),
            "x\tx.ab1\trefused\tno calls\t0" + std::string(15, '\t') + '\n');
}

TEST(TsvTable, EscapesEveryText) {
  Quillet::SampleRow row = fullRow();
  row.sample = "a\tb";
  row.trace = "a\tb.ab1";
  row.detail = "a\nb";
  row.caller = "c\rd";
  row.notes = {.plate = "p\\q",
               .well = "\n",
               .capillary = {},
               .signalToNoise = {},
               .instrument = std::string("\0", 1),
               .runDate = "\t"};

  EXPECT_EQ(
      Quillet::tsvLine(row, false),
      "a\\tb\ta\\tb.ab1\tcut\ta\\nb\t735\t41.3\t700\t650\t12\t690\t3\t2\t45,101\tc\\rd\tp\\\\q\t"
      "\\n\t\t\t\\0\t\\t\n");
}

TEST(TsvTable, EscapesControlCharactersForATerminalOnly) {
  Quillet::SampleRow row = orphanRow();
  row.sample = "\x1b[31m";

  EXPECT_TRUE(Quillet::tsvLine(row, true).starts_with("\\x1b[31m\t"));
  EXPECT_TRUE(Quillet::tsvLine(row, false).starts_with("\x1b[31m\t"));
}

TEST(TsvTable, RoundsMeanQualitiesAsPrintfDoes) {
  const struct {
    double value;
    const char* text;
  } cases[] = {{0, "0.0"},      {0.04, "0.0"}, {9.95, "9.9"},
               {12.25, "12.2"}, {62, "62.0"},  {127, "127.0"}};
  for (const auto& each : cases) EXPECT_EQ(Quillet::meanQualityText(each.value), each.text);
}
