#pragma once

#include <string>

#include "foundation/string.h"

namespace Quillet {

/// Appends "/" to a directory text that does not end in one; an empty text stays empty.
void ensureTrailingSlash(std::string& directory);

/// What a run is to do: compiled-in defaults, changed first by the resource file, then by the
/// flags.
///
/// Directory texts end in "/" or are empty. A sub-directory that begins with "/" is used as it
/// stands, any other lies under the project root.
struct Settings {
  Settings();

  std::string version;     // shown by the banner
  std::string buildStamp;  // shown by -version
  std::string dataDir;     // project root; empty means the working directory
  std::string chromatDir;  // holds the chromatograms
  std::string editDir;     // only to notice that the program runs inside it
  std::string phdDir;      // receives the .phd.1 files
  std::string polyDir;     // receives the .poly files
  std::string listFile_;   // names to convert; "-" is standard input, empty the chromat directory
  bool overwrite = false;
  bool stripExtensions = true;

  /// Gives the list file's name; false, with `name` untouched, when there is none.
  bool listFile(Tessaly::String& name) const;
};

}  // namespace Quillet
