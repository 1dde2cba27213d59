#include "shards/whole_results.h"

#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

#include "audit/phd_result.h"
#include "audit/poly_result.h"

namespace Quillet {

WholeResults::WholeResults(const std::string& phdPath, const std::string& polyPath)
    : phds_(phdPath), polys_(polyPath) {}

bool WholeResults::has(const std::string& sample) {
  const std::optional<PhdParts> parts = splitPhd(phds_.read(sample + ".phd.1"));
  if (!parts) return false;

  std::string_view poly = polys_.read(sample + ".poly");
  if (!poly.starts_with(sample)) return false;
  poly.remove_prefix(sample.size());  // its line feeds would end the first line
  return isWholePoly(poly, parts->baseCount);
}

WholeResults::Folder::Folder(const std::string& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

std::string_view WholeResults::Folder::read(const std::string& name) {
  const Descriptor file(
      ::openat(descriptor_.number(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status;
  if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > capacity_) {
    bytes_ = std::make_unique_for_overwrite<char[]>(size);
    capacity_ = size;
  }
  std::size_t held = 0;
  while (held < size) {
    const ssize_t got = readSome(file.number(), bytes_.get() + held, size - held);
    if (got <= 0) return {};
    held += static_cast<std::size_t>(got);
  }
  return {bytes_.get(), held};
}

}  // namespace Quillet
