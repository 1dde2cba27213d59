#pragma once

#include <string>

#include "foundation/string.h"

namespace Quillet {

/// Appends "/" to a directory text that does not end in one; an empty text stays empty.
void ensureTrailingSlash(std::string& directory);

/// The options of a run: built-in defaults, changed by the resource file, then by the flags.
///
/// Directory texts end in "/" or are empty. A sub-directory that begins with "/" is an absolute
/// path; any other is relative to the project root.
struct Settings {
  Settings();

  std::string version;     // shown by the banner
  std::string buildStamp;  // shown by -version
  std::string dataDir;     // project root; empty means the working directory
  std::string chromatDir;  // holds the chromatograms
  std::string editDir;     // its parent is the project root when the program runs inside it
  std::string phdDir;      // receives the .phd.1 files
  std::string polyDir;     // receives the .poly files
  std::string listFile_;   // file of the names to convert; "-": standard input, empty: chromatDir
  bool overwrite = false;
  bool stripExtensions = true;

  /// Sets `name` to the list file's name. False, with `name` unchanged, when there is none.
  bool listFile(Tessaly::String& name) const;
};

}  // namespace Quillet
