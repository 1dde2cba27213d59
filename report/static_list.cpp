#include "report/static_list.h"

#include "report/html_text.h"
#include "report/state_texts.h"
#include "report/verdict.h"

namespace Quillet {

namespace {

std::string countLine(SampleState state, std::uint64_t count) {
  return "<tr data-severity=\"" + std::string(textOf(severityOf(state))) + "\"><th scope=\"row\">" +
         textOf(state) + "</th><td>" + withCommas(count) + "</td><td>" + htmlText(adviceOf(state)) +
         "</td></tr>\n";
}

std::string sampleLine(const SampleRow& row) {
  return "<tr data-severity=\"" + std::string(textOf(severityOf(row.state))) +
         "\"><th scope=\"row\">" + textOf(row.state) + "</th><td>" + htmlText(row.sample) +
         "</td><td>" + htmlText(row.trace.value_or("")) + "</td><td>" + htmlText(row.detail) +
         "</td></tr>\n";
}

std::string sampleTable(const WorstSamples& worst) {
  std::string html =
      "<table>\n<caption>Samples that are not converted</caption>\n"
      "<tr><th scope=\"col\">state</th><th scope=\"col\">sample</th>"
      "<th scope=\"col\">trace</th><th scope=\"col\">detail</th></tr>\n";
  for (const SampleRow* row : worst.rows()) html += sampleLine(*row);
  html += "</table>\n";
  const std::uint64_t leftOut = worst.leftOut();
  if (leftOut > 0) html += "<p>and " + withCommas(leftOut) + " more</p>\n";
  return html;
}

}  // namespace

std::string staticList(const WorstSamples& worst) {
  std::string counts;
  for (const SampleState state : sampleStates) {
    const std::uint64_t count = worst.counts().of(state);
    if (count > 0) counts += countLine(state, count);
  }
  if (counts.empty()) return {};
  const std::string html = "<table>\n<caption>Samples by state</caption>\n" + counts + "</table>\n";
  return worst.rows().empty() ? html : html + sampleTable(worst);
}

}  // namespace Quillet
