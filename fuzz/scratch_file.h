#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The one file into which a fuzz target writes its bytes, so that it is opened as the program
/// opens files.
///
/// Lies in a folder of its own in TMPDIR where that is set, else in memory (/dev/shm), else in
/// /tmp, and keeps its name for the life of the process; folder and file go with the object.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& name);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  /// The file's whole content from now on.
  void hold(const std::uint8_t* bytes, std::size_t count) const;

  const std::string& folder() const { return folder_; }  // absolute, without a final "/"
  const std::string& path() const { return path_; }

 private:
  std::string folder_;
  std::string path_;
  int descriptor_;
};

/// Ends the process with a message unless the claim holds: what a fuzz target asserts.
void require(bool holds, const char* claim);
