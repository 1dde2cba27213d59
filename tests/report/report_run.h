#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/support/project_folder.h"

/// One row of the report's table: texts as they stand in the file, by the name of their column.
using ReportRow = std::map<std::string, std::string>;

/// How a run of quillet-report ended, and its table.
struct ReportResult {
  int status = -1;
  std::string err;
  std::vector<ReportRow> rows;
};

/// Runs quillet-report in the project's root.
ProgramResult runReport(const ProjectFolder& project, std::vector<std::string> arguments,
                        const std::string& input = {});

/// The same with the table on standard output, which is read.
ReportResult reportTable(const ProjectFolder& project, std::vector<std::string> arguments = {},
                         const std::string& input = {});

/// The rows of a table. Throws where it is none: a line without all columns, or without its end.
std::vector<ReportRow> rowsOf(const std::string& tsv);

/// "trace sample state [detail]" of each row, the columns of a verdict.
std::vector<std::string> statesOf(const ReportResult& result);
