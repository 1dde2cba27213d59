#pragma once

#include <ctime>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/scratch_folder.h"

/// A project of its own for one test: the four empty directories of a project in a scratch folder.
///
/// Names of traces are file names in chromat_dir, names of samples have neither ".phd.1" nor
/// ".poly". A file that is not there reads as an empty text.
class ProjectFolder : public ScratchFolder {
 public:
  ProjectFolder();

  void addTrace(const std::string& name, std::string_view bytes) const;
  /// Adds the trace as the system's gzip packs it; `name` is used as it stands.
  void addGzipped(const std::string& name, const std::string& bytes) const;

  /// Runs the program in the project's root.
  ProgramResult run(std::vector<std::string> arguments = {}, const std::string& input = {}) const;
  /// Runs the program in the project's root with a list file that holds `names`, one on a line.
  ProgramResult runList(const std::vector<std::string>& names,
                        std::vector<std::string> arguments = {}) const;
  /// An environment with a shell script in the place of gunzip.
  std::map<std::string, std::string> withGunzip(const std::string& script) const;

  std::string phd(const std::string& sample) const;
  /// The .phd.1 file with "@TIME@" for the text of its TIME line.
  std::string timelessPhd(const std::string& sample) const;
  /// What stands behind "TIME: ".
  std::string phdTime(const std::string& sample) const;
  /// The lines of the .phd.1 file between BEGIN_DNA and END_DNA.
  std::string phdBases(const std::string& sample) const;
  std::string poly(const std::string& sample) const;

  /// What lies in a directory of the project, hidden or not, in ascending order.
  std::vector<std::string> entries(const std::string& directory) const;

  /// The line for a trace that can not be read.
  std::string invalidTrace(const std::string& name) const;
  /// The line for a trace without quality values.
  std::string missingQualities(const std::string& name) const;
};

/// `bytes` as the system's gzip packs them.
std::string gzipped(const std::string& bytes);

/// What the system's gunzip complains about when it unpacks `words`, which the shell splits.
std::string gunzipComplaints(const ScratchFolder& folder, const std::string& words);

/// All seconds from `first` to `last` in UTC, as strftime writes them.
std::vector<std::string> momentTexts(std::time_t first, std::time_t last, const char* format);

/// The meter's lines for these percentages when they do not go to a terminal.
std::string meterLines(std::initializer_list<int> percentages);
