#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "foundation/string.h"

/// An empty folder that is the working directory for one test, and is gone after it.
///
/// Whatever the code under test drops into the working directory, temporary traces above all, lands
/// here. The former working directory comes back when the object goes.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  /// Absolute path of `name` inside the folder.
  Tessaly::String at(const std::string& name) const;
  /// Writes the bytes to `name`, making its folders, and returns the absolute path.
  Tessaly::String write(const std::string& name, std::string_view bytes) const;
  /// All bytes of `name`; empty when there is no such file.
  std::string read(const std::string& name) const;
  void makeFolder(const std::string& name) const;
  bool has(const std::string& name) const;

 private:
  std::filesystem::path path_;
  std::filesystem::path former_;
};
