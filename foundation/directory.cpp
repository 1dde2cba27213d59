#include "foundation/directory.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <iostream>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Tessaly {

namespace {

struct DirectoryCloser {
  void operator()(DIR* handle) const { closedir(handle); }
};
using DirectoryHandle = std::unique_ptr<DIR, DirectoryCloser>;

constexpr mode_t directoryBit = 0040000;
constexpr mode_t ownerReadBit = 0400;
constexpr mode_t ownerWriteBit = 0200;

std::size_t workingDirectorySize = 256;  // bytes for getcwd(); later calls keep the grown size

/// `path` with a "/" at its end.
String withFinalSlash(const char* path) {
  String result(path);
  if (!result.endsWith('/')) result.append('/');
  return result;
}

/// The working directory from getcwd(). Warns and is empty when that fails.
String systemWorkingDirectory() {
  for (;;) {
    const auto buffer = std::make_unique<char[]>(workingDirectorySize);
    if (getcwd(buffer.get(), workingDirectorySize) != nullptr) return String(buffer.get());
    const int error = errno;
    if (error != ERANGE) {
      std::cerr << "Warning: getpwd failed: " << error << std::endl;
      return String();
    }
    workingDirectorySize *= 4;
  }
}

enum class EntryKind { subdirectory, file, neither };

/// Opens the path as a directory: so a link counts as its target. The entry is a file when opening
/// fails with ENOTDIR, and neither when it fails for another reason.
EntryKind kindByOpening(const std::string& path) {
  const DirectoryHandle handle(opendir(path.c_str()));
  if (handle != nullptr) return EntryKind::subdirectory;
  return errno == ENOTDIR ? EntryKind::file : EntryKind::neither;
}

}  // namespace

Directory::Exception::Exception(const char* path) : path_(path) {}
Directory::Exception::~Exception() = default;
const char* Directory::Exception::path() const { return path_.c_str(); }

// Deliberate: some texts end in a colon, some do not. Callers print a blank and the path after it.
const char* Directory::AccessError::message() const { return "could not access directory:"; }
const char* Directory::NotFound::message() const { return "no such file or directory:"; }
const char* Directory::NotADirectory::message() const { return "not a directory"; }
const char* Directory::PermissionDenied::message() const { return "permission denied"; }
const char* Directory::NotReadable::message() const { return "could not read directory:"; }
const char* Directory::NotWriteable::message() const { return "could not write to directory:"; }

Directory::Directory(const char* path) { read(path, false); }

bool Directory::read(const char* path, bool includeHidden) {
  std::string entryPath(withFinalSlash(path).text());
  DirectoryHandle handle(opendir(entryPath.c_str()));
  if (handle == nullptr) return false;
  subdirectories_.clear();
  files_.clear();

  const std::size_t nameOffset = entryPath.size();
  while (const dirent* entry = readdir(handle.get())) {
    const char* name = entry->d_name;
    if (name[0] == '.' && !includeHidden) continue;
    entryPath.resize(nameOffset);
    entryPath += name;
    switch (kindByOpening(entryPath)) {
      case EntryKind::subdirectory:
        subdirectories_.emplace_back(name);
        break;
      case EntryKind::file:
        files_.emplace_back(name);
        break;
      case EntryKind::neither:
        break;  // Deliberate: an entry that can not be opened is in neither list.
    }
  }

  handle.reset();  // sorting needs no open directory
  std::sort(subdirectories_.begin(), subdirectories_.end());
  std::sort(files_.begin(), files_.end());
  return true;
}

bool Directory::readCurrent(bool includeHidden) {
  return read(currentDirectory().text(), includeHidden);
}

String Directory::homeDirectory() {
  const char* home = std::getenv("HOME");
  return home == nullptr ? String() : withFinalSlash(home);
}

String Directory::currentDirectory() {
  const char* noted = std::getenv("PWD");
  if (noted != nullptr && *noted != '\0') return withFinalSlash(noted);
  // Deliberate: an unknown working directory becomes "/".
  return withFinalSlash(systemWorkingDirectory().text());
}

void Directory::check(const char* path, bool mustBeReadable, bool mustBeWriteable) {
  struct stat status;
  if (stat(path, &status) != 0) {
    const int error = errno;
    if (error == ENOENT || error == ENOTDIR) throw NotFound(path);
    if (error == EACCES) throw PermissionDenied(path);
    throw AccessError(path);
  }
  // Deliberate: one bit, not the whole file type. Sockets and block devices have it and pass.
  if ((status.st_mode & directoryBit) == 0) throw NotADirectory(path);
  // Deliberate: the owner's bits count, whoever runs the program.
  if (mustBeReadable && (status.st_mode & ownerReadBit) == 0) throw NotReadable(path);
  if (mustBeWriteable && (status.st_mode & ownerWriteBit) == 0) throw NotWriteable(path);
}

bool Directory::exists(const String& path) { return exists(path.text()); }

bool Directory::exists(const char* path) {
  struct stat status;
  return stat(path, &status) == 0;
}

String Directory::fileName(const String& path) {
  String name;
  name.setTail(path, path.lastIndex('/') + 1);
  return name;
}

String Directory::extension(const String& path) {
  const std::int32_t dotIndex = path.lastIndex('.');
  String extension;
  if (dotIndex > 0 && dotIndex > path.lastIndex('/')) extension.setTail(path, dotIndex + 1);
  return extension;
}

String Directory::directoryName(const String& path) {
  const std::int32_t slashIndex = path.lastIndex('/');
  String directory;
  if (slashIndex >= 0) directory.setPrefix(path, slashIndex + 1);
  return directory;
}

String Directory::parentDirectory(String& path) {
  // Deliberate: the caller's text loses its final "/" too.
  if (path.endsWith('/')) path.removeLast(1);
  return directoryName(path);
}

}  // namespace Tessaly
