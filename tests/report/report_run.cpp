#include "tests/report/report_run.h"

#include <sstream>
#include <stdexcept>

namespace {

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields(1);
  for (const char byte : line) {
    if (byte == '\t') {
      fields.emplace_back();
    } else {
      fields.back() += byte;
    }
  }
  return fields;
}

}  // namespace

ProgramResult runReport(const ProjectFolder& project, std::vector<std::string> arguments,
                        const std::string& input) {
  return runProgram(
      QUILLET_REPORT_PROGRAM,
      {.folder = project.path().string(), .arguments = std::move(arguments), .input = input});
}

ReportResult reportTable(const ProjectFolder& project, std::vector<std::string> arguments,
                         const std::string& input) {
  arguments.insert(arguments.end(), {"--tsv", "-"});
  const ProgramResult result = runReport(project, std::move(arguments), input);
  if (result.out.empty()) return {result.status, result.err, {}};
  return {result.status, result.err, rowsOf(result.out)};
}

std::vector<ReportRow> rowsOf(const std::string& tsv) {
  if (!tsv.ends_with('\n')) throw std::runtime_error("a table without a last line feed");
  std::istringstream lines(tsv);
  std::string line;
  std::getline(lines, line);
  const std::vector<std::string> columns = fieldsOf(line);
  std::vector<ReportRow> rows;
  while (std::getline(lines, line)) {
    const std::vector<std::string> fields = fieldsOf(line);
    if (fields.size() != columns.size()) throw std::runtime_error("not every column: " + line);
    ReportRow& row = rows.emplace_back();
    for (std::size_t i = 0; i < columns.size(); ++i) row[columns[i]] = fields[i];
  }
  return rows;
}

std::vector<std::string> statesOf(const ReportResult& result) {
  std::vector<std::string> states;
  for (const ReportRow& row : result.rows) {
    states.push_back(row.at("trace") + ' ' + row.at("sample") + ' ' + row.at("state") + " [" +
                     row.at("detail") + ']');
  }
  return states;
}
