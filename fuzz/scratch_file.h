#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The file into which a fuzz target writes its bytes, so that the program opens them as a file.
///
/// It is in a folder of its own: in TMPDIR when that is set, otherwise in /dev/shm (memory), and in
/// /tmp when that fails. Its name does not change. The destructor removes file and folder.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& name);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  /// Replaces the content of the file.
  void hold(const std::uint8_t* bytes, std::size_t count) const;

  const std::string& folder() const { return folder_; }  // absolute, without a final "/"
  const std::string& path() const { return path_; }

 private:
  std::string folder_;
  std::string path_;
  int descriptor_;
};

/// The assertion of a fuzz target: ends the process with a message unless the claim holds.
void require(bool holds, const char* claim);
