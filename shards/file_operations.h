#pragma once

#include <string>

// What the commands do with files and folders. Errors: std::runtime_error with a text that names
// the path and the system's reason, unless said otherwise.
namespace Quillet {

/// Throws "WHAT PATH: REASON" for the present errno.
[[noreturn]] void throwSystemError(const std::string& what, const std::string& path);

/// All bytes of the file.
std::string readWholeFile(const std::string& path);
/// Writes a new file, or over an old one.
void writeWholeFile(const std::string& path, const std::string& bytes);

/// Makes a folder with the permissions that a new one gets.
void makeFolder(const std::string& path);

/// Gives the file `from` the name `to`, in place of what has it. Where a rename can not do that,
/// since both are not on one file system, the bytes go to `hidden`, a name in the folder of `to`,
/// and on to the disk first; then `from` stays. A failure leaves nothing under `hidden`.
void moveFile(const std::string& from, const std::string& to, const std::string& hidden);

/// Brings what happened in a folder to the disk, as far as the file system can.
void syncFolder(const std::string& path);

/// Removes a file or a folder with what it holds, and follows no links. What others add meanwhile
/// is removed, too. False, without an exception, when something stays.
bool removeTree(const std::string& path);

}  // namespace Quillet
