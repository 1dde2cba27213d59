#include "report/run.h"

#include <cstdint>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <string>
#include <unistd.h>
#include <vector>

#include "app/flags.h"
#include "app/project.h"
#include "app/resource_file.h"
#include "app/settings.h"
#include "audit/project_audit.h"
#include "foundation/directory.h"
#include "foundation/progress_meter.h"
#include "report/command_line.h"
#include "report/output_file.h"
#include "report/report_outputs.h"

namespace Quillet {

namespace {

constexpr int noReport = 1;  // exit status

/// Gives a closed standard stream a descriptor that fails, so that no output takes its number.
void fillStandardStreams() {
  while (true) {
    const int descriptor = open("/dev/null", O_RDONLY);
    if (descriptor > STDERR_FILENO) close(descriptor);
    if (descriptor < 0 || descriptor > STDERR_FILENO) return;
  }
}

/// The percent meter on a terminal, gone with the object; nothing elsewhere.
class TerminalMeter {
 public:
  TerminalMeter(std::size_t count, bool wanted)
      : isShown_(wanted && isatty(STDERR_FILENO) != 0), meter_(static_cast<std::int32_t>(count)) {
    if (isShown_) meter_.start();
  }
  ~TerminalMeter() {
    if (isShown_) meter_.clearLine();
  }
  TerminalMeter(const TerminalMeter&) = delete;
  TerminalMeter& operator=(const TerminalMeter&) = delete;

  void step() {
    if (isShown_) meter_.step();
  }

 private:
  bool isShown_;
  Tessaly::ProgressMeter meter_;
};

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
  Settings settings;
  readResourceFileSilently(settings);
  applyFlags(settings, line.projectFlags, "COMMAND LINE");
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

int complain(const std::string& problem) {
  std::cerr << "quillet-report: " << problem << std::endl;
  return noReport;
}

}  // namespace

int runReport(int argc, const char* const* argv) {
  fillStandardStreams();
  removeBegunFilesOnSignals();
  try {
    std::vector<std::string> words;
    if (argc > 1) words.assign(argv + 1, argv + argc);
    const CommandLine line = readCommandLine(words);
    return line.answer ? answer(*line.answer) : report(line);
  } catch (const UsageError& error) {
    return complain(error.what() + std::string("\nTry `quillet-report --help'."));
  } catch (const std::exception& exception) {
    return complain(exception.what());
  } catch (const Tessaly::Directory::Exception& exception) {
    return complain(std::string(exception.message()) + ' ' + exception.path());
  } catch (const char* text) {
    return complain(text);
  } catch (int) {
    return noReport;  // whoever throws a number has printed a message
  } catch (...) {
    return complain("unexpected exception");
  }
}

}  // namespace Quillet
