#pragma once

#include <string>

// Why the converter makes nothing of a trace that can be read.
namespace Quillet {

/// Whether the name of the sample's .phd.1 is longer than file systems allow (255 bytes).
bool isTooLongForResult(const std::string& sample);

/// Whether no shell takes the path as one word that stands for itself.
bool isTornByShell(const std::string& path);

}  // namespace Quillet
