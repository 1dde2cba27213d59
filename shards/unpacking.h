#pragma once

#include <cstdint>
#include <string>

#include "shards/stop_signals.h"

namespace Quillet {

/// What unpacking a file has brought.
struct Unpacking {
  bool isUnpacked = false;
  std::string complaints;  // what gunzip says of a file that is not intact
};

/// Unpacks the file at `packed`, an absolute path, into a new file at `plain`: an intact one by
/// zlib, any other by gunzip, started without a shell. These are the bytes that the converter's
/// gunzip gives it.
///
/// Not unpacked, and no file: what is no regular file, can not be opened, or has more than `limit`
/// bytes. Throws std::runtime_error when the new file can not be written or gunzip not be started,
/// and Stopped.
Unpacking unpackInto(const std::string& plain, const std::string& packed, std::int64_t limit,
                     const StopSignals& signals);

}  // namespace Quillet
