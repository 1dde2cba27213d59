#pragma once

#include <string>

#include "app/settings.h"
#include "foundation/clock.h"
#include "foundation/string.h"

namespace Quillet {

/// What a run does with the result directories.
enum class ProjectUse { write, read };

/// One run over one project: its directories and its start time.
///
/// Borrows the finished settings. Directory texts end in "/". Every .phd.1 file of the run holds
/// the time of construction.
/// Errors: when the run can not go on, an operation prints a message and throws the int 1. A trace
/// that can not be converted gets a message and is skipped. Exceptions of the lower layers pass
/// through.
/// Use: construct, prepare() once, then convertAll().
class Project {
 public:
  explicit Project(const Settings& settings);

  /// Finds and checks the project root and its chromat, phd and poly directories.
  /// To write, the last two must be writeable.
  void prepare(ProjectUse use = ProjectUse::write);
  /// Converts every chromatogram that the list file names, or every one in the chromat directory.
  void convertAll();

  const Tessaly::String& workingDir() const { return workingDir_; }
  const Tessaly::String& rootDir() const { return rootDir_; }
  const Tessaly::String& chromatPath() const { return chromatPath_; }
  const Tessaly::String& phdPath() const { return phdPath_; }
  const Tessaly::String& polyPath() const { return polyPath_; }
  const Tessaly::String& tempName() const { return tempName_; }
  const Tessaly::String& timeText() const { return timeText_; }

 private:
  void resolveRoot();
  void resolve(const std::string& directory, bool mustBeWriteable, Tessaly::String& path);

  std::string workPath_;  // the directory that resolve() works on
  Tessaly::Clock startTime_;
  const Settings& settings_;
  Tessaly::String workingDir_;
  Tessaly::String rootDir_;
  Tessaly::String chromatPath_;
  Tessaly::String phdPath_;
  Tessaly::String polyPath_;
  Tessaly::String tempName_;
  Tessaly::String timeText_;  // startTime_ as ctime() gives it
};

}  // namespace Quillet
