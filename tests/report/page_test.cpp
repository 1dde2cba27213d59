#include <algorithm>
#include <ctime>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>
#include <zlib.h>

#include "tests/report/converted_project.h"
#include "tests/report/picture_levels.h"
#include "tests/report/report_run.h"
#include "tests/support/project_folder.h"
#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

// The page that the built program writes.

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// What stands between two texts; throws where they do not occur in this order.
std::string between(const std::string& text, const std::string& start, const std::string& end) {
  const std::size_t begin = text.find(start);
  const std::size_t last = text.find(end, begin + start.size());
  if (begin == text.npos || last == text.npos) throw std::runtime_error("no " + start);
  return text.substr(begin + start.size(), last - begin - start.size());
}

nlohmann::json rowsOfPage(const std::string& page) {
  return nlohmann::json::parse(between(page, "id=\"rows\">", "</script>"));
}

/// The pictures by the index of their row, as base64.
std::map<int, std::string> picturesOf(const std::string& page) {
  static const std::regex element(
      "<script type=\"application/octet-stream\\+base64\" id=\"t([0-9]+)\">([^<]*)</script>");
  std::map<int, std::string> pictures;
  const std::string rest = page.substr(page.find("octet-stream+base64\" id=") - 40);
  for (std::sregex_iterator match(rest.begin(), rest.end(), element), end; match != end; ++match) {
    pictures[std::stoi((*match)[1])] = (*match)[2];
  }
  return pictures;
}

/// What the system's base64 and zlib make of a picture.
std::vector<int> bytesOf(const std::string& picture) {
  const ProgramResult decoded =
      runProgram("base64", {.folder = "/", .arguments = {"-d"}, .input = picture});
  if (decoded.status != 0) throw std::runtime_error("no base64: " + picture);
  std::string bytes(std::size_t{1} << 20, '\0');
  auto count = static_cast<uLongf>(bytes.size());
  if (uncompress(reinterpret_cast<Bytef*>(bytes.data()), &count,
                 reinterpret_cast<const Bytef*>(decoded.out.data()),
                 static_cast<uLong>(decoded.out.size())) != Z_OK) {
    throw std::runtime_error("no zlib stream");
  }
  std::vector<int> values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(static_cast<unsigned char>(bytes[i]));
  return values;
}

int wordOf(const std::vector<int>& bytes, std::size_t index) {
  const std::size_t at = 4 * index;
  return bytes.at(at) + 256 * bytes.at(at + 1) + 65536 * bytes.at(at + 2);
}

std::string textOf(const std::vector<int>& bytes, std::size_t begin, std::size_t count) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
          bytes.begin() + static_cast<std::ptrdiff_t>(begin + count)};
}

/// The page without the time at which it was made.
std::string timeless(const std::string& page) {
  return std::regex_replace(page, std::regex("[0-9]+ [A-Z][a-z]+ [0-9]{4}, [0-9:]{5}"), "@TIME@");
}

/// The hash of a text as the system's tools make it, in the words of a policy.
std::string policySource(const ScratchFolder& folder, const std::string& text) {
  folder.write("hashed", text);
  const ProgramResult hash = runProgram(
      "bash", {.folder = folder.path(),
               .arguments = {"-c",
                             "printf \"$(sha256sum <hashed | sed 's/ .*//; s/../\\\\x&/g')\""
                             " | base64"}});
  EXPECT_EQ(hash.out.size(), 45U) << hash.err;
  return "'sha256-" + hash.out.substr(0, 44) + "'";
}

std::size_t countOf(const std::string& text, char character) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), character));
}

/// An ABIF file whose container has this name.
std::string traceOfPlate(const std::string& plate) {
  std::string bytes = believableTrace(1, 60).abif().entry("CTNM", 1, plate + '\0').build();
  const std::size_t entry = bytes.find(std::string("CTNM\0\0\0\1", 8));
  bytes.at(entry + 9) = 19;  // a text that ends in a zero byte
  return bytes;
}

/// Three converted traces: 60, 80 and 100 bases.
class Page : public testing::Test {
 protected:
  Page() {
    project_.addTrace("a.ab1", traces_[0].abif().build());
    project_.addTrace("b.scf", traces_[1].scf().build());
    project_.addGzipped("c.ab1.gz", traces_[2].abif().build());
    EXPECT_EQ(project_.run().status, 0);
  }

  std::string page(std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.end(), {"-o", "page.html"});
    result_ = runReport(project_, arguments);
    std::string page = project_.read("page.html");
    fs::remove(project_.path() / "page.html");
    return page;
  }

  ProjectFolder project_;
  std::vector<TraceContents> traces_{believableTrace(1, 60), believableTrace(2, 80),
                                     believableTrace(3, 100)};
  ProgramResult result_;
};

}  // namespace

TEST_F(Page, StandsBesideTheOtherOutputs) {
  ASSERT_EQ(runReport(project_, {"--html", "page.html", "--tsv", "t", "--fasta", "f"}).status, 0);

  EXPECT_THAT(project_.entries("."),
              ElementsAre("chromat_dir", "edit_dir", "f", "page.html", "phd_dir", "poly_dir", "t"));
  EXPECT_TRUE(project_.read("page.html").ends_with("</html>\n"));
  EXPECT_THAT(project_.read("page.html"), HasSubstr("<strong>All 3 samples are whole.</strong>"));
}

TEST_F(Page, LeavesTheSummaryToStandardOutput) {
  page();

  EXPECT_EQ(result_.status, 0);
  EXPECT_THAT(result_.out, ::testing::EndsWith("converted       3\n"));
  EXPECT_EQ(result_.err, "");
}

TEST_F(Page, HoldsTheRowsOfTheTable) {
  const std::vector<ReportRow> table = reportTable(project_).rows;

  const nlohmann::json json = rowsOfPage(page());

  EXPECT_EQ(json["project"], project_.path().filename().string());
  ASSERT_EQ(json["rows"].size(), table.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    for (std::size_t column = 0; column < 20; ++column) {
      const nlohmann::json& value = json["rows"][i][column];
      std::string text = value.is_string() ? value.get<std::string>() : value.dump();
      std::erase_if(text,
                    [&](char byte) { return value.is_array() && (byte == '[' || byte == ']'); });
      EXPECT_EQ(value.is_null() ? "" : text, table[i].at(json["columns"][column]));
    }
  }
}

TEST_F(Page, HoldsTheSamplesAndCallsOfEachTrace) {
  const std::string html = page();
  const nlohmann::json rows = rowsOfPage(html)["rows"];
  const std::map<int, std::string> pictures = picturesOf(html);

  ASSERT_EQ(pictures.size(), traces_.size());
  for (std::size_t i = 0; i < traces_.size(); ++i) {
    const TraceContents& trace = traces_[i];
    const std::vector<int> bytes = bytesOf(pictures.at(static_cast<int>(i)));
    const std::size_t pointCount = trace.channels[0].size();
    const std::size_t kept = (pointCount + 1) / 2;
    const std::size_t baseCount = trace.bases.size();
    EXPECT_EQ(wordOf(bytes, 0), static_cast<int>(pointCount));
    EXPECT_EQ(wordOf(bytes, 4), static_cast<int>(baseCount));

    std::vector<int> heights;
    const std::size_t trimEnd = rows[i][9];
    for (std::size_t base = rows[i][8]; base < trimEnd; ++base) {
      const std::size_t channel = std::string("ACGT").find(trace.bases[base]);
      if (channel == std::string::npos) continue;
      heights.push_back(trace.channels[channel][static_cast<std::size_t>(trace.peaks[base])]);
    }
    ASSERT_GE(heights.size(), 20U);
    std::sort(heights.begin(), heights.end());
    const int top = 4 * heights[heights.size() / 2];
    EXPECT_EQ(wordOf(bytes, 2), top);
    std::size_t at = 32;
    for (const std::vector<int>& samples : trace.channels) {
      const auto start = bytes.begin() + static_cast<std::ptrdiff_t>(at);
      at += kept;
      ASSERT_LE(at, bytes.size());
      const std::vector<int> levels =
          levelsOf({start, bytes.begin() + static_cast<std::ptrdiff_t>(at)});
      for (std::size_t k = 0; k < kept; ++k) {
        const double exact = std::min(samples[2 * k] * 255.0 / top, 255.0);
        ASSERT_NEAR(levels[k], exact, 0.5000001) << k;
      }
    }
    EXPECT_EQ(at, 32 + 4 * kept);
    EXPECT_EQ(textOf(bytes, at, baseCount), trace.bases);
    EXPECT_EQ(std::vector<int>(bytes.begin() + static_cast<std::ptrdiff_t>(at + baseCount),
                               bytes.begin() + static_cast<std::ptrdiff_t>(at + 2 * baseCount)),
              trace.qualities);
    int position = 0;
    for (std::size_t base = 0; base < baseCount; ++base) {
      position += bytes.at(at + 2 * baseCount + base) + 256 * bytes.at(at + 3 * baseCount + base);
      EXPECT_EQ(position % 65536, trace.peaks[base]);
    }
  }
}

TEST_F(Page, HoldsTheOtherReadingOfAResult) {
  const std::string bases = project_.phdBases("a");
  project_.write("phd_dir/b.phd.1", project_.phd("a"));
  project_.write("phd_dir/gone.phd.1", project_.phd("a"));
  ASSERT_EQ(countOf(bases, '\n'), 60U);
  std::string letters;
  for (std::size_t at = 0; at < bases.size(); at = bases.find('\n', at) + 1) letters += bases[at];

  const std::string html = page();

  EXPECT_EQ(result_.status, 3);
  EXPECT_EQ(rowsOfPage(html)["rows"][1][2], "differs");
  EXPECT_EQ(rowsOfPage(html)["rows"][3][2], "orphan");
  const std::map<int, std::string> pictures = picturesOf(html);
  const std::vector<int> own = bytesOf(pictures.at(0));
  EXPECT_EQ(wordOf(own, 7), 0);
  for (const int index : {1, 3}) {
    const std::vector<int> bytes = bytesOf(pictures.at(index));
    EXPECT_EQ(wordOf(bytes, 6), 60);
    EXPECT_EQ(wordOf(bytes, 7), 1);
    EXPECT_EQ(textOf(bytes, bytes.size() - 4 * 60, 60), letters);
  }
}

TEST_F(Page, AllowsItsOwnScriptAndStyleAlone) {
  const std::string html = page();

  const std::string script = policySource(project_, between(html, "<script>", "</script>"));
  const std::string style = policySource(project_, between(html, "<style>", "</style>"));

  EXPECT_EQ(between(html, "http-equiv=\"Content-Security-Policy\" content=\"", "\">"),
            "default-src 'none'; script-src " + script + "; style-src " + style +
                "; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'; "
                "trusted-types 'none'");
}

TEST_F(Page, WithoutPicturesIsTheSamePageOtherwise) {
  const std::string with = page();
  const std::string without = page({"--no-pictures"});

  nlohmann::json rows = rowsOfPage(with);
  rows["pictures"] = false;
  for (auto& row : rows["rows"]) row.back() = 0;
  EXPECT_EQ(rowsOfPage(without), rows);
  EXPECT_EQ(without.find("octet-stream+base64\" id="), std::string::npos);
  const auto head = [](const std::string& page) {
    return timeless(page.substr(0, page.find("id=\"rows\"")));
  };
  EXPECT_EQ(head(without), head(with));
}

TEST_F(Page, GoesToStandardOutputAsToAFile) {
  const std::string file = page();

  const ProgramResult result = runReport(project_, {"-o", "-"});

  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(timeless(result.out), timeless(file));
  EXPECT_EQ(result.err, "");
}

TEST_F(Page, SaysWhenItWasMade) {
  const std::time_t first = std::time(nullptr);
  const std::string html = page();
  const std::time_t last = std::time(nullptr);

  const std::string made = between(html, "<p class=\"made\">", " \u00B7 quillet-report ");

  EXPECT_THAT(momentTexts(first, last, "%-d %B %Y, %H:%M"), ::testing::Contains(made));
}

TEST_F(Page, OfAnEmptyProjectIsAPage) {
  const ProjectFolder empty;

  const ProgramResult result = runReport(empty, {"--html", "page.html"});

  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(empty.read("page.html"), HasSubstr("The project holds no samples."));
  EXPECT_THAT(rowsOfPage(empty.read("page.html"))["rows"], IsEmpty());
}

TEST_F(Page, KeepsWhatWaitsBesideItselfOrWithTheTemporaryFiles) {
  const auto run = [this](const std::string& name) {
    return runProgram(QUILLET_REPORT_PROGRAM, {.folder = project_.path(),
                                               .arguments = {"-o", name},
                                               .environment = {{"TMPDIR", "/nowhere"}}});
  };
  EXPECT_EQ(run("page.html").status, 0);

  for (const char* name : {"-", "/dev/null"}) {
    const ProgramResult result = run(name);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "quillet-report: can not make a temporary file in /nowhere: No such file or "
              "directory\n");
  }
}

// Half of the page is more than the waiting rows and pictures: the page itself meets the limit. A
// limit of one block meets what waits.
TEST_F(Page, LeavesNothingWhereThereIsNoRoom) {
  const std::string old = "an earlier page";
  fs::remove(project_.path() / "chromat_dir/c.ab1.gz");  // unpacking needs room too
  for (int i = 0; i < 40; ++i) {
    project_.addTrace("x" + std::to_string(i) + ".ab1", believableTrace(9, 300).abif().build());
  }
  const std::size_t size = page().size();
  project_.write("page.html", old);
  const std::vector<std::string> before = project_.entries(".");
  const struct {
    std::size_t blocks;  // of 1024 bytes
    std::string message;
  } cases[] = {{1, "can not write a temporary file in .: File too large\n"},
               {size / 1024 - 1, "can not write page.html: File too large\n"}};
  for (const auto& row : cases) {
    const ProgramResult result = runProgram(
        "bash", {.folder = project_.path(),
                 .arguments = {"-c", "ulimit -f " + std::to_string(row.blocks) +
                                         "; exec '" QUILLET_REPORT_PROGRAM "' -o page.html"}});

    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "quillet-report: " + row.message);
    EXPECT_EQ(project_.entries("."), before);
    EXPECT_EQ(project_.read("page.html"), old);
  }
}

TEST_F(Page, SaysThatADeviceIsFull) {
  const ProgramResult result = runReport(project_, {"--html", "/dev/full", "--tsv", "t"});

  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "quillet-report: can not write /dev/full: No space left on device\n");
  EXPECT_FALSE(project_.has("t"));
}

TEST(HostilePage, HoldsNamesAsTextAndNothingElse) {
  const std::vector<std::string> names{"<img src=x onerror=alert(1)>",
                                       "--><!--<script>",
                                       "__proto__",
                                       "a:12%41#b",
                                       "'\"><svg onload=alert(1)>",
                                       "&lt;b&gt;{{title}}{{rows}}",
                                       "\xE2\x80\xA8\xE2\x80\xAE\x1b[31m",
                                       "\xFF\xC3",
                                       "-"};
  const ScratchFolder folder;
  // The same project twice; in the tame one all names are harmless.
  const auto page = [&](const std::string& root, bool isTame) {
    for (const char* part : {"phd_dir", "poly_dir"}) folder.makeFolder(root + '/' + part);
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string name = isTame ? std::to_string(i) : names[i];
      folder.write(root + "/chromat_dir/s" + name, traceOfPlate(name + "</script><b>"));  // waits
      folder.write(root + "/chromat_dir/t" + name, "no trace");
    }
    const ProgramResult result =
        runProgram(QUILLET_REPORT_PROGRAM,
                   {.folder = folder.path(),
                    .arguments = {"-d", (folder.path() / root).string(), "-o", "page", "-s"}});
    EXPECT_EQ(result.status, 2) << result.err;
    return folder.read("page");
  };

  const std::string hostile = page("<b>", false);
  const std::string tame = page("tame", true);

  const nlohmann::json json = rowsOfPage(hostile);
  EXPECT_EQ(json["project"], "<b>");
  std::map<std::string, nlohmann::json> rows;
  for (const auto& row : json["rows"]) rows[row[0]] = row;
  ASSERT_EQ(rows.size(), 2 * names.size());
  for (const std::string& name : names) {
    const std::string read = name == "\xFF\xC3" ? "\xEF\xBF\xBD\xEF\xBF\xBD" : name;
    EXPECT_EQ(rows["s" + read][1], "s" + read);
    EXPECT_EQ(rows["s" + read][2], "waiting");
    EXPECT_EQ(rows["s" + read][14], read + "</script><b>");
    EXPECT_EQ(rows["t" + read][2], "invalid");
  }
  // Names add no markup.
  const std::string markup = between(hostile, "</head>", "id=\"rows\">");
  EXPECT_EQ(countOf(markup, '>'), countOf(between(tame, "</head>", "id=\"rows\">"), '>'));
  EXPECT_EQ(countOf(hostile, '<'), countOf(tame, '<'));
  EXPECT_EQ(countOf(hostile, '\x1b'), 0U);
  EXPECT_EQ(countOf(hostile, '\xFF'), 0U);
  EXPECT_THAT(hostile, HasSubstr("<td>s&#60;img src=x onerror=alert(1)&#62;</td>"));
  EXPECT_THAT(hostile, HasSubstr("<title>&#60;b&#62;: report</title>"));
}

TEST(HostilePage, HoldsListedNamesThatNoFileCanHave) {
  const ProjectFolder project;
  project.write("list", "</script><script>alert(1)</script>\n<!--<script>/x\n");

  EXPECT_EQ(runReport(project, {"-s", "-l", "list", "-o", "page"}).status, 2);

  const std::string page = project.read("page");
  EXPECT_EQ(rowsOfPage(page)["rows"][0][0], "</script><script>alert(1)</script>");
  EXPECT_EQ(rowsOfPage(page)["rows"][1][1], "<!--<script>/x");
  EXPECT_THAT(page, Not(HasSubstr("alert(1)</script>")));
  EXPECT_THAT(page, Not(HasSubstr("<!--<script>")));
  EXPECT_THAT(page,
              HasSubstr("<td>&#60;/script&#62;&#60;script&#62;alert(1)&#60;/script&#62;</td>"));
}
