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
/// Channels are always in the order A, C, G, T; samples are amplitudes as stored (0..65535). Bases
/// and qualities are in file order, one byte each. Peaks are 0-based sample indices, one more than
/// the bases: the last is the number of samples in a channel. Owns what it read.
/// Use: construct, open once, take the data when that succeeded, destroy.
class TraceFile : public Tessaly::FileReader {
 public:
  TraceFile();

  /// Sets the text that open() puts before every name; adds a final "/" when there is none.
  void setDirectory(const Tessaly::String& name);

  /// Finds, unpacks, recognises and reads `name`; cuts a final ".gz" off it. A compressed trace is
  /// unpacked into the file tempName() in the working directory, which is then removed. False when
  /// that fails: see status() and fault(). Prints nothing. When memory is out, throws
  /// std::bad_alloc or what String and Vector throw; the unpacked file may then stay.
  /// After a failure the trace is empty.
  bool open(Tessaly::String& name);
  /// The same, but the name stays unchanged.
  bool open(const char* name);

  /// Copies the pointCount() samples of channel 0..3 (A, C, G, T); another index copies nothing.
  void copyChannel(std::uint16_t* destination, std::uint32_t index) const;
  /// Copies the pointCount() samples of each channel.
  void copyChannels(std::uint16_t* a, std::uint16_t* c, std::uint16_t* g, std::uint16_t* t) const;
  /// Gives the caller copies of the channels to own, and sets `count` to the samples in each.
  void newChannels(std::unique_ptr<std::uint16_t[]>& a, std::unique_ptr<std::uint16_t[]>& c,
                   std::unique_ptr<std::uint16_t[]>& g, std::unique_ptr<std::uint16_t[]>& t,
                   std::uint32_t& count) const;

  /// Copies the calls for the result files: always `bases` and `peaks`, and `qualities` only when
  /// one of them is from 10 to 127. True when the qualities were copied. Without calls, or with
  /// more than 2^31 - 2 of them, it is false and changes nothing.
  /// Deliberate: both texts end at their first zero byte, so they can be shorter than the calls.
  /// content().calls holds all of them.
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

  /// Name of the unpacked copy: "temp" and the time of construction, in local time.
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
