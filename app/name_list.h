#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

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

}  // namespace Quillet
