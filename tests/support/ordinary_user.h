#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/scratch_folder.h"

/// While it lives, the process does not have the rights of the superuser, who passes every
/// permission test.
class OrdinaryUser {
 public:
  OrdinaryUser() : former_(geteuid()), changed_(former_ == 0 && seteuid(65534) == 0) {}
  ~OrdinaryUser() {
    if (changed_ && seteuid(former_) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  bool isOrdinary() const { return geteuid() != 0; }
  /// Whether this user may run the program. It can lie in a folder that is closed to others.
  static bool mayRun(const char* program) {
    return faccessat(AT_FDCWD, program, X_OK, AT_EACCESS) == 0;
  }

 private:
  uid_t former_;
  bool changed_;
};

/// A scratch folder that other users may enter.
class OpenScratchFolder : public ScratchFolder {
 public:
  OpenScratchFolder() { chmod(path().c_str(), 0755); }
};
