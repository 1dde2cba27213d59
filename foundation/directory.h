#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/string.h"

namespace Tessaly {

/// The names in one directory, split into sub-directories and files. Static operations find the
/// home and the working directory, check a directory's permissions and take a path apart.
///
/// The lists hold names, not paths. Each is sorted by unsigned bytes; a prefix comes first. The
/// object owns them; a reference to one is valid until the next read().
/// Errors: check() throws a child of Exception. Every other operation gives an empty or false
/// result, or throws for lack of memory. Only currentDirectory() may print: a warning on the
/// standard error stream.
class Directory {
 public:
  /// Base of what check() throws. It keeps the given path and derives from nothing.
  /// To report one, print message(), a blank and path().
  class Exception {
   public:
    // Virtual operations: their order is part of the class.
    virtual ~Exception();
    virtual const char* message() const = 0;
    virtual const char* path() const;

   protected:
    explicit Exception(const char* path);
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;

   private:
    std::string path_;
  };

  /// The status of the path can not be read, for a reason that no other class names.
  class AccessError : public Exception {
   public:
    explicit AccessError(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// The path, or a directory in it, does not exist.
  class NotFound : public Exception {
   public:
    explicit NotFound(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// The mode of the path lacks the directory bit; see check().
  class NotADirectory : public Exception {
   public:
    explicit NotADirectory(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// A directory in the path may not be searched.
  class PermissionDenied : public Exception {
   public:
    explicit PermissionDenied(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// check() asked for reading, and the owner may not read.
  class NotReadable : public Exception {
   public:
    explicit NotReadable(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// check() asked for writing, and the owner may not write.
  class NotWriteable : public Exception {
   public:
    explicit NotWriteable(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// Reads `path` without its hidden entries; both lists are empty when it can not be opened.
  explicit Directory(const char* path);

  /// Replaces both lists. False, with the lists unchanged, when `path` can not be opened.
  /// A link counts as its target. With `includeHidden`, "." and ".." are sub-directories too.
  bool read(const char* path, bool includeHidden);
  bool readCurrent(bool includeHidden);

  const std::vector<std::string>& subdirectories() const { return subdirectories_; }
  const std::vector<std::string>& files() const& { return files_; }
  /// Moves the list out of a temporary Directory.
  std::vector<std::string> files() && { return std::move(files_); }

  /// The value of HOME, ending in "/"; empty when HOME is not set.
  static String homeDirectory();
  /// The value of PWD, or the result of getcwd() when PWD is empty or not set, ending in "/"; "/"
  /// when getcwd() fails too.
  static String currentDirectory();

  /// Returns when `path` is a directory whose owner has the permissions asked for, whoever runs the
  /// program; otherwise throws a child of Exception. Deliberate: one bit of the file type makes a
  /// directory. Sockets and block devices have it, so they pass too.
  static void check(const char* path, bool mustBeReadable, bool mustBeWriteable);
  /// True for files of every type. A link counts as its target.
  static bool exists(const String& path);
  static bool exists(const char* path);

  /// The part after the last "/"; the whole path when there is none.
  static String fileName(const String& path);
  /// The part of the file name after its last "."; a dot at the start of the path does not count.
  static String extension(const String& path);
  /// The path up to and including its last "/"; empty when there is none.
  static String directoryName(const String& path);
  /// The path up to and including the "/" before its last part. Takes one final "/" off `path`.
  static String parentDirectory(String& path);

 private:
  std::vector<std::string> subdirectories_;
  std::vector<std::string> files_;
  String unused_;  // only a part of the object's layout: never read or set
};

}  // namespace Tessaly
