#pragma once

#include <string>

#include "audit/descriptor.h"

namespace Quillet {

/// Where attempts lie.
struct AttemptPlace {
  std::string folder;  // absolute, without "/" at its end
  std::string prefix;  // of all their names; not empty in a folder that is not ours alone
};

/// A private folder for one attempt, gone with the object.
///
/// Its file `lock` is locked as long as the process lives, which tells others that it is in use.
/// Its name is the prefix and begun-* until it is locked, attempt-* afterwards, and gone-* when
/// others remove it.
class AttemptFolder {
 public:
  /// Makes the folder. Its permissions are those of any new folder. Throws std::runtime_error.
  explicit AttemptFolder(const AttemptPlace& place);
  ~AttemptFolder();
  AttemptFolder(const AttemptFolder&) = delete;
  AttemptFolder& operator=(const AttemptFolder&) = delete;

  const std::string& path() const { return path_; }
  /// The name gone-*, under which this attempt can put aside what is to be removed.
  std::string nameOnceGone() const;

 private:
  std::string path_;
  Descriptor lock_;
};

/// Removes the attempts that no process uses any longer. Those of other users stay, and so do those
/// on file systems without locks.
void removeUnusedAttempts(const AttemptPlace& place);

}  // namespace Quillet
