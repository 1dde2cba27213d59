#include "audit/trace_reading.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "audit/descriptor.h"
#include "audit/instrument_notes.h"
#include "audit/unpacked_file.h"
#include "foundation/directory.h"
#include "trace/trace_file.h"

namespace Quillet {

namespace {

constexpr std::string_view packedSuffix = ".gz";

/// Why there is no reading of a file, whatever it holds; null when it can be opened.
const char* faultOfFile(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) {
    const bool isMissing = errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
    return isMissing ? "no such file" : "not readable";
  }
  if (!S_ISREG(status.st_mode)) return "not a file";
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  return file.isOpen() ? nullptr : "not readable";
}

const char* textOf(TraceFault fault) {
  switch (fault) {
    case TraceFault::none:
      break;
    case TraceFault::notFound:
      return "no such file";
    case TraceFault::notATrace:
      return "not a trace";
    case TraceFault::directoryCut:
      return "directory cut";
    case TraceFault::noBaseOrder:
      return "no base order";
    case TraceFault::noAnalysedChannels:
      return "no analysed channels";
    case TraceFault::channelLengthsDiffer:
      return "channel lengths differ";
    case TraceFault::callCountsDiffer:
      return "call counts differ";
    case TraceFault::dataBeyondFile:
      return "data beyond the file";
  }
  return "";
}

/// Reads what lies open under the path; the name is no packed one.
void readContent(const char* path, TraceReading& reading) {
  TraceFile trace;
  if (!trace.open(path)) {
    reading.fault = textOf(trace.fault());
    return;
  }
  reading.content = trace.takeContent();
  reading.notes = readInstrumentNotes(path);
}

}  // namespace

TraceReading readTrace(const std::string& path) {
  TraceReading reading;
  const bool isNamedPacked = path.size() > packedSuffix.size() && path.ends_with(packedSuffix);
  if (isNamedPacked) {
    reading.packedPath = path;
  } else if (!Tessaly::Directory::exists(path.c_str())) {
    std::string packedPath = path + std::string(packedSuffix);
    if (Tessaly::Directory::exists(packedPath.c_str())) reading.packedPath = std::move(packedPath);
  }

  const bool isPacked = !reading.packedPath.empty();
  if (const char* fault = faultOfFile(isPacked ? reading.packedPath : path)) {
    reading.fault = fault;
    return reading;
  }
  if (!isPacked) {
    readContent(path.c_str(), reading);
    return reading;
  }
  const UnpackedFile unpacked(reading.packedPath);
  reading.isDamaged = !unpacked.isIntact();
  readContent(unpacked.path().c_str(), reading);
  if (!reading.fault.empty() && unpacked.isGzip() && !unpacked.isIntact()) {
    reading.fault = "damaged gzip";
  }
  return reading;
}

}  // namespace Quillet
