#pragma once

#include <string>

// What the commands do with files and folders. Errors: std::runtime_error with a text that names
// the path and the system's reason, unless said otherwise.
namespace Quillet {

/// Throws "WHAT PATH: REASON" for the present errno.
[[noreturn]] void throwSystemError(const std::string& what, const std::string& path);

/// The path from the root. A relative one begins in the working directory, as the shell completes
/// it, not in PWD, which can be an earlier one.
std::string absolutePath(const std::string& path);

/// All bytes of the file.
std::string readWholeFile(const std::string& path);

/// Makes a folder with the permissions that a new one gets.
void makeFolder(const std::string& path);

/// Brings what happened in a folder to the disk, as far as the file system can.
void syncFolder(const std::string& path);

/// Removes a file or a folder with what it holds, and follows no links. What others add meanwhile
/// is removed, too. False, without an exception, when something stays.
bool removeTree(const std::string& path);

}  // namespace Quillet
