#pragma once

#include <optional>
#include <string>

#include "audit/project_audit.h"
#include "report/command_line.h"
#include "report/html_page.h"
#include "report/output_file.h"
#include "report/summary.h"

namespace Quillet {

/// All outputs of one run: the files that the command line names, and the summary on standard
/// output where no file takes its place. Each gets every row as it comes; none is held in memory.
///
/// Errors: as OutputFile; then no output has its name, unless it is the last step that fails.
/// Use: construct, add() each row, finish() once.
class ReportOutputs {
 public:
  /// Begins the files. `project` is the folder that the report is about.
  ReportOutputs(const CommandLine& line, const std::string& project);

  void add(const AuditedSample& sample);
  /// Ends all outputs, then gives the files their names.
  void finish();

  const StateCounts& counts() const { return summary_.counts(); }
  /// Whether rows go to the terminal as they come, where a meter would stand between them.
  bool fillTerminal() const;

 private:
  using File = std::optional<OutputFile>;  // none where the command line names no file

  void refuseOneFileTwice() const;

  bool trim_;
  bool isFirst_ = true;
  Summary summary_;
  File tsv_;
  File json_;
  File fastq_;
  File fasta_;
  File html_;
  std::optional<HtmlPage> page_;  // what html_ will hold
  File console_;                  // for the summary
};

}  // namespace Quillet
