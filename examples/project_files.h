#pragma once

#include <filesystem>
#include <string>

/// Makes the four folders of a project under `root`, and `root` itself, where they are not there.
void makeProjectFolders(const std::filesystem::path& root);

/// Writes a file anew; throws std::runtime_error when the disk does not take it.
void writeFile(const std::filesystem::path& path, const std::string& bytes);
