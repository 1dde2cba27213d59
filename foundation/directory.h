#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/string.h"

namespace Tessaly {

/// The names in one directory, split into sub-directories and files, and the other dealings that
/// the program has with directories: where home and the working directory are, whether a directory
/// may be used, and the parts of a path.
///
/// The lists hold names, not paths, each sorted by bytes (as unsigned characters, a prefix first).
/// They belong to the object; whoever walks them borrows them until the next read().
/// Errors: check() throws a child of Exception; everything else answers with an empty or false
/// result, unless memory is out. Only asking for the working directory may print: a warning on the
/// standard error stream.
class Directory {
 public:
  /// Root of what check() throws. It keeps the path as it was given and derives from nothing.
  /// To report one: message(), a blank, path().
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

  /// The file system refused to tell, for a reason without a class of its own.
  class AccessError : public Exception {
   public:
    explicit AccessError(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// The path, or something on the way to it, does not exist.
  class NotFound : public Exception {
   public:
    explicit NotFound(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// The path exists and lacks the directory bit; see check().
  class NotADirectory : public Exception {
   public:
    explicit NotADirectory(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// A directory on the way to the path may not be searched.
  class PermissionDenied : public Exception {
   public:
    explicit PermissionDenied(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// Reading was asked for, and the owner may not read.
  class NotReadable : public Exception {
   public:
    explicit NotReadable(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// Writing was asked for, and the owner may not write.
  class NotWriteable : public Exception {
   public:
    explicit NotWriteable(const char* path) : Exception(path) {}
    const char* message() const override;
  };

  /// Reads `path` without its hidden entries; both lists are empty when it can not be opened.
  explicit Directory(const char* path);

  /// Replaces both lists; false, with the lists as they were, when `path` can not be opened.
  /// A link counts as what it leads to. With `includeHidden`, "." and ".." are sub-directories too.
  bool read(const char* path, bool includeHidden);
  bool readCurrent(bool includeHidden);

  const std::vector<std::string>& subdirectories() const { return subdirectories_; }
  const std::vector<std::string>& files() const& { return files_; }
  /// Handed over, not copied, by a directory that is not needed any longer.
  std::vector<std::string> files() && { return std::move(files_); }

  /// The value of HOME, ending in "/"; empty when HOME is not set.
  static String homeDirectory();
  /// The value of PWD, or else what the system says, ending in "/"; "/" when neither is known.
  static String currentDirectory();

  /// Returns when `path` is a directory whose owner has the permissions asked for, whoever runs the
  /// program. Deliberate: a kind is a directory when its code holds the directory bit, as those of
  /// sockets and block devices do, so that these pass, too.
  static void check(const char* path, bool mustBeReadable, bool mustBeWriteable);
  /// True for files of every kind.
  static bool exists(const String& path);
  static bool exists(const char* path);

  /// What follows the last "/"; the whole path when there is none.
  static String fileName(const String& path);
  /// What follows the last "." of the file name; a dot that begins the path does not count.
  static String extension(const String& path);
  /// The path up to its last "/", which is included; empty when there is none.
  static String directoryName(const String& path);
  /// The path up to the "/" before its last part; `path` itself loses one final "/".
  static String parentDirectory(String& path);

 private:
  std::vector<std::string> subdirectories_;
  std::vector<std::string> files_;
  String unused_;  // part of the object's layout: made empty, never read or set
};

}  // namespace Tessaly
