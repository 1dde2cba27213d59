#include "report/html_page.h"

#include <charconv>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "app/version.h"
#include "foundation/clock.h"
#include "report/base64.h"
#include "report/deflated.h"
#include "report/html_text.h"
#include "report/page_rows.h"
#include "report/page_text.h"
#include "report/quality_strip.h"
#include "report/static_list.h"
#include "report/trace_picture.h"
#include "report/verdict.h"

namespace Quillet {

namespace {

/// The last name of a folder's path; "/" for the root.
std::string nameOf(const std::string& folder) {
  std::filesystem::path path = std::filesystem::path(folder).lexically_normal();
  if (!path.has_filename()) path = path.parent_path();
  return path.has_filename() ? path.filename().string() : path.string();
}

/// A hash in hexadecimal digits, as a page's policy has it.
std::string policySource(std::string_view sha256) {
  std::string bytes;
  for (; sha256.size() >= 2; sha256.remove_prefix(2)) {
    unsigned byte = 0;
    std::from_chars(sha256.data(), sha256.data() + 2, byte, 16);
    bytes += static_cast<char>(byte);
  }
  return "'sha256-" + base64Of(bytes) + '\'';
}

/// Nothing is loaded, and nothing runs but the page's own script.
std::string policy() {
  return "default-src 'none'; script-src " + policySource(pageScript().sha256) + "; style-src " +
         policySource(pageStyle().sha256) +
         "; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'; "
         "trusted-types 'none'";
}

std::string verdictHtml(const std::string& project, const Verdict& verdict) {
  std::string html = "<h1>" + htmlText(project) + "</h1><p class=\"verdict\"><strong>" +
                     htmlText(verdict.main) + "</strong>";
  if (!verdict.rest.empty()) html += ' ' + htmlText(verdict.rest);
  return html + "</p>";
}

/// "22 November 2026, 00:52 · quillet-report 1.1.0"
std::string madeText(std::time_t moment) {
  const Tessaly::Clock clock(moment);
  return std::to_string(clock.day()) + ' ' + clock.monthName().text() + ' ' +
         clock.format("%Y, %h:%m").text() + " \u00B7 quillet-report " + versionText;
}

/// The fixed text of a page, from mark to mark.
class Template {
 public:
  Template(std::string_view text, OutputFile& file) : rest_(text), file_(file) {}

  /// Writes what stands before the mark, and passes over it.
  void writeUpTo(std::string_view mark) {
    const std::size_t place = rest_.find(mark);
    if (place == std::string_view::npos) {
      throw std::logic_error("the page's template lacks " + std::string(mark));
    }
    file_.write(rest_.substr(0, place));
    rest_.remove_prefix(place + mark.size());
  }
  void replace(std::string_view mark, std::string_view text) {
    writeUpTo(mark);
    file_.write(text);
  }
  void writeRest() { file_.write(rest_); }

 private:
  std::string_view rest_;
  OutputFile& file_;
};

}  // namespace

HtmlPage::HtmlPage(About about, const std::string& spoolFolder)
    : about_(std::move(about)), rows_(spoolFolder), pictures_(spoolFolder) {
  rows_.write(pageRowsStart(nameOf(about_.project), about_.hasPictures));
}

void HtmlPage::add(const AuditedSample& sample) {
  const SampleRow& row = sample.row;
  worst_.add(row);
  const bool isWhole = row.state == SampleState::converted;
  if (isWhole && row.figures && row.figures->contiguous < shortStretch) ++shortReads_;

  std::string strip;
  if (sample.content != nullptr && sample.content->calls.count > 0) {
    const BaseCalls& calls = sample.content->calls;
    strip = qualityStrip({calls.qualities.get(), calls.count});
  }
  const TracePicture picture = about_.hasPictures ? tracePicture(sample) : TracePicture();
  const bool hasPicture = !picture.bytes.empty();
  if (hasPicture) {
    pictures_.write("<script type=\"application/octet-stream+base64\" id=\"t" +
                    std::to_string(rowCount_) + "\">" +
                    base64Of(deflated(picture.bytes, picture.cuts)) + "</script>\n");
  }
  if (rowCount_ > 0) rows_.write(",\n");
  rows_.write(pageRow(row, strip, hasPicture));
  ++rowCount_;
}

void HtmlPage::writeTo(OutputFile& file) {
  const auto put = [&file](std::string_view bytes) { file.write(bytes); };
  const std::string project = nameOf(about_.project);
  Template page(pageTemplate(), file);
  page.replace("{{policy}}", policy());
  page.replace("{{title}}", htmlText(project) + ": report");
  page.replace("{{style}}", pageStyle().text);
  page.replace("{{verdict}}", verdictHtml(project, projectVerdict(worst_.counts(), shortReads_)));
  page.replace("{{made}}", madeText(about_.moment));
  page.replace("{{static}}", staticList(worst_));
  page.writeUpTo("{{rows}}");
  rows_.write(pageRowsEnd());
  rows_.read(put);
  page.replace("{{script}}", pageScript().text);
  page.writeUpTo("{{pictures}}");
  pictures_.read(put);
  page.writeRest();
}

}  // namespace Quillet
