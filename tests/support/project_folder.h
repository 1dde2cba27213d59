#pragma once

#include <ctime>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/scratch_folder.h"

/// A project for one test: the four empty directories of a project in a scratch folder.
///
/// The name of a trace is its file name in chromat_dir. The name of a sample does not include
/// ".phd.1" and ".poly". A missing file reads as an empty text.
class ProjectFolder : public ScratchFolder {
 public:
  ProjectFolder();

  void addTrace(const std::string& name, std::string_view bytes) const;
  /// Adds the trace, packed by the system's gzip, as `name`. Appends no ".gz".
  void addGzipped(const std::string& name, const std::string& bytes) const;

  /// Runs the program in the project's root.
  ProgramResult run(std::vector<std::string> arguments = {}, const std::string& input = {}) const;
  /// The same with a list file that holds `names`, one on each line.
  ProgramResult runList(const std::vector<std::string>& names,
                        std::vector<std::string> arguments = {}) const;
  /// An environment in which `script`, a shell script, replaces gunzip.
  std::map<std::string, std::string> withGunzip(const std::string& script) const;

  std::string phd(const std::string& sample) const;
  /// The .phd.1 file with "@TIME@" in place of its time.
  std::string timelessPhd(const std::string& sample) const;
  /// The time of the .phd.1 file.
  std::string phdTime(const std::string& sample) const;
  /// The lines of the .phd.1 file between BEGIN_DNA and END_DNA.
  std::string phdBases(const std::string& sample) const;
  std::string poly(const std::string& sample) const;

  /// The sorted names in a directory of the project, hidden ones included.
  std::vector<std::string> entries(const std::string& directory) const;

  /// The message for a trace that can not be read.
  std::string invalidTrace(const std::string& name) const;
  /// The message for a trace without quality values.
  std::string missingQualities(const std::string& name) const;
};

/// `bytes`, packed by the system's gzip.
std::string gzipped(const std::string& bytes);

/// The standard error output of the system's gunzip for `words`, which the shell splits.
std::string gunzipComplaints(const ScratchFolder& folder, const std::string& words);

/// The strftime texts of all seconds from `first` to `last`, in UTC.
std::vector<std::string> momentTexts(std::time_t first, std::time_t last, const char* format);

/// The meter's lines for these percentages, as it writes them into a file.
std::string meterLines(std::initializer_list<int> percentages);
