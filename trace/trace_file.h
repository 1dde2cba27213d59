#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <utility>

#include "foundation/string.h"
#include "foundation/vector.h"
#include "trace/file_reader.h"
#include "trace/trace_content.h"

namespace Quillet {

/// One chromatogram, read whole into memory from an ABIF or SCF file, gzip-compressed or not.
///
/// Channels are always in the order A, C, G, T; samples are amplitudes as stored (0..65535).
/// Bases and qualities are in file order, one byte each. Peaks are 0-based sample indices, one more
/// than the bases: the last is the number of samples in a channel.
/// Owns what it read. Errors: open() returns false and sets status() and fault(); nothing is
/// printed. Without memory std::bad_alloc is thrown, or what a String or a Vector throws; an
/// unpacked file may then stay in the working directory.
/// Use: construct, open once, take the data when that succeeded, destroy.
class TraceFile : public Tessaly::FileReader {
 public:
  TraceFile();

  /// Puts a text before every name given to open(); adds a final "/" where it lacks one.
  void setDirectory(const Tessaly::String& name);

  /// Finds, unpacks, recognises and reads `name`; cuts a final ".gz" off it. A compressed trace is
  /// unpacked into the file tempName() in the working directory, which is removed again.
  bool open(Tessaly::String& name);
  /// The same for a name that the caller does not want to see changed.
  bool open(const char* name);

  /// Copies channel 0..3 (A, C, G, T) to pointCount() entries; another index copies nothing.
  void copyChannel(std::uint16_t* destination, std::uint32_t index) const;
  /// Copies each channel to pointCount() entries.
  void copyChannels(std::uint16_t* a, std::uint16_t* c, std::uint16_t* g, std::uint16_t* t) const;
  /// Gives the caller copies of the channels, each of `count` entries, to own.
  void newChannels(std::unique_ptr<std::uint16_t[]>& a, std::unique_ptr<std::uint16_t[]>& c,
                   std::unique_ptr<std::uint16_t[]>& g, std::unique_ptr<std::uint16_t[]>& t,
                   std::uint32_t& count) const;

  /// Copies the calls out for the result files. Without calls, or with more than 2^31 - 2 of them,
  /// changes nothing and is false. Otherwise sets `bases` and `peaks`; sets `qualities` and is true
  /// when one of the qualities is above 9. Both texts end at their first zero byte, so they can be
  /// shorter than the calls; content().calls has them whole.
  bool getBaseCalls(Tessaly::String& bases, Tessaly::String& qualities,
                    Tessaly::Vector<std::int32_t>& peaks) const;

  /// Samples in each channel.
  std::uint32_t pointCount() const { return content_.channels.pointCount(); }
  std::uint32_t baseCount() const { return content_.calls.count; }
  /// The base-calling program that the file names; empty when it names none.
  const Tessaly::String& callerName() const { return content_.callerName; }
  /// Everything the file holds, as stored.
  const TraceContent& content() const { return content_; }
  /// Hands the content over; the trace is empty afterwards.
  TraceContent takeContent() { return std::exchange(content_, TraceContent()); }

  /// Name of the unpacked copy: the moment of construction, in local time.
  Tessaly::String tempName() const;
  /// Of the last open(): 0 read, 1 not found, 2 no trace or an unreadable one.
  std::int32_t status() const { return status_; }
  /// Why the last open() failed, in more detail.
  TraceFault fault() const { return content_.fault; }

 private:
  TraceContent content_;
  Tessaly::String directory_;
  std::time_t madeAt_;
  std::int32_t status_ = 0;
};

}  // namespace Quillet
