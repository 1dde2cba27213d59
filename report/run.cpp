#include "report/run.h"

#include <iostream>
#include <string>
#include <vector>

#include "app/project.h"
#include "app/settings.h"
#include "audit/companion_program.h"
#include "audit/project_audit.h"
#include "audit/terminal_meter.h"
#include "report/command_line.h"
#include "report/output_file.h"
#include "report/report_outputs.h"

namespace Quillet {

namespace {

int answer(const std::string& text) {
  OutputFile console("-");
  console.write(text);
  console.finish();
  return 0;
}

/// A folder without the slash at its end; the root keeps it.
std::string withoutSlash(std::string folder) {
  if (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

ProjectAudit begunAudit(const Settings& settings, const Project& project, double mixedRatio) {
  try {
    return ProjectAudit(settings, project, mixedRatio);
  } catch (int) {
    std::cerr << std::endl;  // the message about a list has no line end
    throw;
  }
}

int report(const CommandLine& line) {
  const Settings settings = settingsOfRun(line.projectFlags);
  Project project(settings);
  project.prepare(ProjectUse::read);

  ProjectAudit audit = begunAudit(settings, project, line.mixedRatio);
  ReportOutputs outputs(line, withoutSlash(project.rootDir().text()));
  {
    TerminalMeter meter(audit.nameCount(), !outputs.fillTerminal());
    audit.run([&outputs](const AuditedSample& sample) { outputs.add(sample); },
              [&meter] { meter.step(); });
  }
  outputs.finish();
  return outputs.counts().exitStatus();
}

}  // namespace

int runReport(int argc, const char* const* argv) {
  removeBegunFilesOnSignals();
  return runCompanion("quillet-report", argc, argv, [](const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words);
    return line.answer ? answer(*line.answer) : report(line);
  });
}

}  // namespace Quillet
