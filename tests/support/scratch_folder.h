#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "foundation/string.h"

/// An empty folder that is the working directory of one test.
///
/// Temporary traces of the code under test are written here. The destructor removes the folder and
/// restores the former working directory.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  /// Absolute path of `name` inside the folder.
  Tessaly::String at(const std::string& name) const;
  /// Writes the bytes to `name`, makes missing folders and returns the absolute path.
  Tessaly::String write(const std::string& name, std::string_view bytes) const;
  /// All bytes of `name`; empty when there is no such file.
  std::string read(const std::string& name) const;
  void makeFolder(const std::string& name) const;
  bool has(const std::string& name) const;

 private:
  std::filesystem::path path_;
  std::filesystem::path former_;
};
