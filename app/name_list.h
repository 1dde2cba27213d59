#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/settings.h"
#include "foundation/string.h"

// The names that a run converts, in its order. A name is a file name in the chromat directory.
// Duplicates stay; whether a listed file exists is not checked.

namespace Quillet {

/// The first word of every line that has one. A word ends at its first zero byte.
std::vector<std::string> namesInStream(std::istream& stream);

/// The names in a list file; "-" is standard input. None when the file can not be opened. A
/// directory opens and holds no names.
std::optional<std::vector<std::string>> namesInFile(const Tessaly::String& listFile);

/// The files of a directory in ascending byte order, without hidden ones.
std::vector<std::string> namesInDirectory(const Tessaly::String& path);

/// The names of a run: those of the list file that the settings name, or else the files of the
/// chromat directory. Throws 1, after a message, when the list file can not be opened.
std::vector<std::string> namesOfRun(const Settings& settings, const Tessaly::String& chromatPath);

}  // namespace Quillet
