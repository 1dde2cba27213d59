#include "shards/whole_results.h"

#include <cstddef>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "audit/phd_result.h"
#include "audit/poly_result.h"

namespace Quillet {

namespace {

/// The bytes of a regular file, mapped; empty when there is none or it can not be read.
class MappedFile {
 public:
  explicit MappedFile(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return;
    struct stat status;
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
      size_ = static_cast<std::size_t>(status.st_size);
      start_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE | MAP_POPULATE, descriptor, 0);
    }
    ::close(descriptor);
  }
  ~MappedFile() {
    if (start_ != MAP_FAILED) ::munmap(start_, size_);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view text() const {
    return start_ == MAP_FAILED ? std::string_view()
                                : std::string_view(static_cast<const char*>(start_), size_);
  }

 private:
  void* start_ = MAP_FAILED;
  std::size_t size_ = 0;
};

}  // namespace

bool hasWholeResults(const std::string& phdPath, const std::string& polyPath,
                     const std::string& sample) {
  const MappedFile phd(phdPath + sample + ".phd.1");
  const std::optional<PhdParts> parts = splitPhd(phd.text());
  if (!parts) return false;

  const MappedFile poly(polyPath + sample + ".poly");
  if (!poly.text().starts_with(sample)) return false;
  // Without the sample, whose line feeds would end the first line.
  return isWholePoly(poly.text().substr(sample.size()), parts->baseCount);
}

}  // namespace Quillet
