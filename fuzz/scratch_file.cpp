#include "fuzz/scratch_file.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::string newFolder() {
  const char* chosen = std::getenv("TMPDIR");
  std::string candidates[]{chosen != nullptr ? chosen : "/dev/shm", "/tmp"};
  for (std::string& folder : candidates) {
    folder += "/quillet-fuzz-XXXXXX";
    if (mkdtemp(folder.data()) != nullptr) return folder;
  }
  std::perror("no folder for the scratch file");
  std::exit(2);
}

}  // namespace

ScratchFile::ScratchFile(const std::string& name)
    : folder_(newFolder()),
      path_(folder_ + '/' + name),
      descriptor_(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
  require(descriptor_ >= 0, "the scratch file can be made");
}

ScratchFile::~ScratchFile() {
  close(descriptor_);
  unlink(path_.c_str());
  rmdir(folder_.c_str());
}

void ScratchFile::hold(const std::uint8_t* bytes, std::size_t count) const {
  require(ftruncate(descriptor_, 0) == 0, "the scratch file can be emptied");
  require(pwrite(descriptor_, bytes, count, 0) == static_cast<ssize_t>(count),
          "the scratch file takes all bytes");
}

void require(bool holds, const char* claim) {
  if (holds) return;
  std::fprintf(stderr, "\nDoes not hold: %s\n", claim);
  std::abort();
}
