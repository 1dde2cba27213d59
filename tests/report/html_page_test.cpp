#include "report/html_page.h"

#include <cstdint>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "app/version.h"
#include "report/page_text.h"
#include "tests/report/made_rows.h"
#include "tests/support/environment.h"
#include "tests/support/scratch_folder.h"

using Quillet::SampleState;

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// What a page may be made of; only the row must be there.
struct Shown {
  Quillet::SampleRow row;
  const Quillet::TraceContent* content = nullptr;
  const Quillet::PhdResult* result = nullptr;
};

/// A page, written to a file and read again.
std::string pageOf(const std::vector<Shown>& samples,
                   Quillet::HtmlPage::About about = {.project = "/lab/run"}) {
  const ScratchFolder folder;
  Quillet::HtmlPage page(about, folder.path());
  for (const Shown& sample : samples) {
    page.add({.row = sample.row, .content = sample.content, .result = sample.result});
  }
  Quillet::OutputFile file("page.html");
  page.writeTo(file);
  file.finish();
  file.publish();
  return folder.read("page.html");
}

/// What stands between two texts, the first of which must occur once.
std::string between(const std::string& text, const std::string& start, const std::string& end) {
  const std::size_t begin = text.find(start);
  EXPECT_NE(begin, std::string::npos) << start;
  EXPECT_EQ(begin, text.rfind(start)) << start;
  const std::size_t from = begin + start.size();
  return text.substr(from, text.find(end, from) - from);
}

nlohmann::json rowsOf(const std::string& page) {
  return nlohmann::json::parse(between(page, "id=\"rows\">", "</script>"));
}

Quillet::SampleRow wholeRow(std::uint32_t contiguous) {
  Quillet::SampleRow row = fullRow();
  row.state = SampleState::converted;
  row.figures->contiguous = contiguous;
  return row;
}

}  // namespace

TEST(HtmlPage, IsTheTemplateWithAllItsMarksReplaced) {
  const std::string page = pageOf({});

  std::string_view fixed = Quillet::pageTemplate();
  std::size_t at = 0;
  while (!fixed.empty()) {
    const std::string_view piece = fixed.substr(0, fixed.find("{{"));
    const std::size_t found = page.find(piece, at);
    ASSERT_NE(found, std::string::npos) << piece;
    at = found + piece.size();
    fixed.remove_prefix(piece.size());
    if (!fixed.empty()) fixed.remove_prefix(fixed.find("}}") + 2);
  }
  EXPECT_EQ(at, page.size());
  EXPECT_THAT(page, Not(HasSubstr("{{policy}}")));
  EXPECT_THAT(page, HasSubstr("<script>" + std::string(Quillet::pageScript().text) + "</script>"));
  EXPECT_THAT(page, HasSubstr("<style>" + std::string(Quillet::pageStyle().text) + "</style>"));
}

TEST(HtmlPage, OfAnEmptyProjectSaysSo) {
  const std::string page = pageOf({});

  EXPECT_THAT(page, HasSubstr("<h1>run</h1><p class=\"verdict\"><strong>The project holds no "
                              "samples.</strong></p>"));
  EXPECT_TRUE(rowsOf(page)["rows"].empty());
  EXPECT_THAT(page, Not(HasSubstr("octet-stream+base64\" id=")));
}

TEST(HtmlPage, IsNamedAfterTheFolderOfTheProject) {
  const struct {
    const char* project;
    const char* name;
  } cases[] = {{"/lab/run 7", "run 7"},  {"/lab/run/", "run"}, {"/lab/run/chromat_dir/..", "run"},
               {"/lab/run/.", "run"},    {"/", "/"},           {"/<b>\"&", "&#60;b&#62;&#34;&#38;"},
               {"/\xFF", "\xEF\xBF\xBD"}};
  for (const auto& row : cases) {
    const std::string page = pageOf({}, {.project = row.project});
    EXPECT_THAT(page, HasSubstr("<title>" + std::string(row.name) + ": report</title>"));
    EXPECT_THAT(page, HasSubstr("<h1>" + std::string(row.name) + "</h1>"));
  }
  EXPECT_EQ(rowsOf(pageOf({}, {.project = "/<b>"}))["project"], "<b>");
}

// 1,795,347,120 seconds are 20,779 days and 41,520 seconds; day 20,779 is 22 November 2026.
TEST(HtmlPage, SaysWhenItWasMadeInLocalTime) {
  const std::string made = " \u00B7 quillet-report " + std::string(Quillet::versionText);
  const struct {
    const char* zone;
    const char* text;
  } cases[] = {{"UTC", "22 November 2026, 11:32"},
               {"Here-5:30", "22 November 2026, 17:02"},
               {"There+12", "21 November 2026, 23:32"}};
  for (const auto& row : cases) {
    const EnvironmentVariable zone("TZ", row.zone);
    tzset();
    EXPECT_THAT(pageOf({}, {.project = "/p", .moment = 1'795'347'120}), HasSubstr(row.text + made));
  }
  tzset();
}

TEST(HtmlPage, CountsShortReadsAmongTheWholeOnes) {
  Quillet::SampleRow withoutCalls = wholeRow(0);
  withoutCalls.figures.reset();
  Quillet::SampleRow shortButCut = wholeRow(10);
  shortButCut.state = SampleState::cut;

  const std::string page =
      pageOf({{wholeRow(299)}, {wholeRow(300)}, {wholeRow(0)}, {withoutCalls}, {shortButCut}});

  EXPECT_THAT(page, HasSubstr("<strong>4 of 5 samples are whole.</strong> 1 result is not to be "
                              "trusted, 2 whole reads have fewer than 300 good bases.</p>"));
}

TEST(HtmlPage, NamesTwoHundredSamplesWithoutAScript) {
  std::vector<Shown> samples;
  for (int i = 0; i < 250; ++i) {
    samples.push_back({rowOf("w" + std::to_string(i), SampleState::waiting)});
  }
  samples.push_back({rowOf("last", SampleState::differs, "bases")});

  const std::string page = pageOf(samples);

  EXPECT_THAT(page, HasSubstr("<td>last</td><td>last.ab1</td><td>bases</td>"));
  EXPECT_THAT(page, HasSubstr("<td>w198</td>"));
  EXPECT_THAT(page, Not(HasSubstr("<td>w199</td>")));
  EXPECT_THAT(page, HasSubstr("<p>and 51 more</p>"));
  EXPECT_EQ(rowsOf(page)["rows"].size(), 251U);
}

TEST(HtmlPage, HoldsAPictureForEachRowThatHasOne) {
  const Quillet::TraceContent trace = contentOf("ACGT", {1, 2, 3, 4});
  const Quillet::TraceContent nothing;
  const Quillet::PhdResult result{.bases = "A", .qualities = {9}, .positions = {4}};
  const std::vector<Shown> samples{{rowOf("a", SampleState::converted), &trace},
                                   {rowOf("b", SampleState::invalid)},
                                   {rowOf("c", SampleState::refused), &nothing},
                                   {orphanRow(), nullptr, &result}};

  const std::string page = pageOf(samples);

  const nlohmann::json rows = rowsOf(page);
  EXPECT_EQ(rows["pictures"], true);
  std::vector<int> flags;
  for (const auto& row : rows["rows"]) flags.push_back(row.back());
  EXPECT_THAT(flags, ::testing::ElementsAre(1, 0, 0, 1));
  EXPECT_EQ(rows["rows"][0][20], "3");  // a mean of 2.5
  EXPECT_EQ(rows["rows"][2][20], "");
  const std::string kind = "<script type=\"application/octet-stream[+]base64\" id=\"";
  EXPECT_THAT(page,
              ::testing::ContainsRegex("</script>\n?" + kind + "t0\">[A-Za-z0-9+/=]+</script>\n" +
                                       kind + "t3\">[A-Za-z0-9+/=]+</script>\n"));
  EXPECT_THAT(page, Not(HasSubstr("id=\"t1\"")));
  EXPECT_THAT(page, Not(HasSubstr("id=\"t2\"")));
}

TEST(HtmlPage, LeavesPicturesOutOnDemand) {
  const Quillet::TraceContent trace = contentOf("ACGT", {1, 2, 3, 4});

  const std::string page = pageOf({{rowOf("a", SampleState::converted), &trace}},
                                  {.project = "/lab/run", .hasPictures = false});

  EXPECT_EQ(rowsOf(page)["pictures"], false);
  EXPECT_EQ(rowsOf(page)["rows"][0][20], "3");
  EXPECT_EQ(rowsOf(page)["rows"][0][21], 0);
  EXPECT_THAT(page, Not(HasSubstr("octet-stream+base64\" id=")));
}
