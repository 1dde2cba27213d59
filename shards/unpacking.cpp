#include "shards/unpacking.h"

#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>

#include "audit/descriptor.h"
#include "audit/escaped_text.h"
#include "audit/gzip_members.h"
#include "shards/child_process.h"
#include "shards/new_file.h"

namespace Quillet {

namespace {

bool isRegular(int descriptor) {
  struct stat status;
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Throws when gunzip did not end by itself, or did not start the program that it is a script for.
/// The bytes are not those of the file then.
void checkEnd(int status, const std::string& packed, std::string complaints) {
  constexpr int warned = 2;  // the highest that gunzip gives, whatever the file holds
  if (status <= warned) return;
  std::string line;
  appendEscaped(line, packed, true);
  complaints.erase(complaints.find_last_not_of('\n') + 1);
  throw std::runtime_error("gunzip of " + line + " ended with status " + std::to_string(status) +
                           (complaints.empty() ? "" : ": " + complaints));
}

/// Passes the file through gunzip; false when there are more bytes than the limit.
bool passThroughGunzip(NewFile& to, const std::string& packed, std::int64_t limit,
                       const StopSignals& signals, std::string& complaints) {
  const Descriptor errors(::memfd_create("complaints", MFD_CLOEXEC));
  // An absolute path: it begins with "/" and is no flag. It stands in the complaints.
  ChildProcess gunzip({.words = {"gunzip", "-c", "-f", packed}, .folder = {}}, signals,
                      errors.number());
  for (std::string bytes; gunzip.readSome(bytes); bytes.clear()) {
    if (to.size() + static_cast<std::int64_t>(bytes.size()) > limit) return false;
    to.write(bytes);
  }
  const int status = gunzip.wait();
  complaints = contentOf(errors.number());
  checkEnd(status, packed, complaints);
  return true;
}

}  // namespace

Unpacking unpackInto(const std::string& plain, const std::string& packed, std::int64_t limit,
                     const StopSignals& signals) {
  Unpacking unpacking;
  const Descriptor file(::open(packed.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!file.isOpen() || !isRegular(file.number())) return unpacking;

  NewFile to(plain);
  const GzipContent content =
      unpackMembers(file.number(), [&](const unsigned char* bytes, std::size_t count) {
        signals.check();
        if (to.size() + static_cast<std::int64_t>(count) > limit) return false;
        to.write({reinterpret_cast<const char*>(bytes), count});
        return true;
      });
  unpacking.isUnpacked = content == GzipContent::intact;
  if (content == GzipContent::damaged) {
    to.clear();
    unpacking.isUnpacked = passThroughGunzip(to, packed, limit, signals, unpacking.complaints);
  }
  if (unpacking.isUnpacked) {
    to.finish();
  } else {
    unpacking.complaints.clear();
  }
  return unpacking;
}

}  // namespace Quillet
