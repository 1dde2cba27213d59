#pragma once

#include <string>

#include "audit/descriptor.h"

namespace Quillet {

/// The unpacked content of a gzipped file, in memory or in an unnamed file; gone with the object.
///
/// A file that is intact (complete gzip members with right checksums and nothing after the last) is
/// unpacked by zlib. Any other goes through `gunzip -c -f`, started without a shell, whose output
/// counts whatever its exit status: these are the bytes that the converter sees.
class UnpackedFile {
 public:
  /// Unpacks the file at `path`. Throws std::runtime_error when there is no room for the content or
  /// gunzip can not be started; a file that can not be opened is empty and not intact.
  explicit UnpackedFile(const std::string& path);

  /// A name under which this process can open the content: "/proc/self/fd/N".
  const std::string& path() const { return path_; }
  /// Whether zlib alone could unpack it.
  bool isIntact() const { return isIntact_; }
  /// Whether the file begins as gzip does.
  bool isGzip() const { return isGzip_; }

 private:
  Descriptor descriptor_;
  std::string path_;
  bool isIntact_ = false;
  bool isGzip_ = false;
};

}  // namespace Quillet
