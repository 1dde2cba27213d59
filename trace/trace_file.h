#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>

#include "foundation/string.h"
#include "foundation/vector.h"
#include "trace/file_reader.h"

namespace Quillet {

struct AbifDirectory;
struct ScfHeader;

/// One chromatogram, read whole into memory from an ABIF or SCF file, gzip-compressed or not.
///
/// Channels are always in the order A, C, G, T; samples are amplitudes as stored (0..65535).
/// Bases and qualities are in file order, one byte each. `peaks` are 0-based sample indices, one
/// more than the bases: the last is the number of samples in a channel.
/// Owns its arrays; newChannels() gives the caller copies to own, releaseChannels() the channels
/// themselves. A compressed trace is unpacked into a file named after the moment of construction,
/// in the working directory, that is gone when open() returns.
/// Errors: open() returns false and sets status(); nothing is printed. Where memory is out, open()
/// and newChannels() throw std::bad_alloc, open() and getBaseCalls() what a String or a Vector
/// throws; an unpacked file may then stay behind.
/// Use: construct, open once, take the data when that succeeded, destroy.
class TraceFile : public Tessaly::FileReader {
 public:
  TraceFile();

  /// A text put before every name given to open(); it gets a final "/" where it lacks one.
  void setDirectory(const Tessaly::String& name);

  /// Finds, unpacks, recognises and reads `name`; cuts a final ".gz" off it.
  bool open(Tessaly::String& name);

  /// Copies channel 0..3 (A, C, G, T) to pointCount() entries; another index copies nothing.
  void copyChannel(std::uint16_t* destination, std::uint32_t index) const;
  void copyChannels(std::uint16_t* a, std::uint16_t* c, std::uint16_t* g, std::uint16_t* t) const;
  /// Copies of all four channels, each of `count` entries.
  void newChannels(std::unique_ptr<std::uint16_t[]> (&channels)[4], std::uint32_t& count) const;
  /// The four channels themselves, not copied. The trace is then one without samples: pointCount()
  /// is 0. The base calls stay as they are, their last peak included.
  void releaseChannels(std::unique_ptr<std::uint16_t[]> (&channels)[4], std::uint32_t& count);

  /// Without base calls, or with more than 2^31 - 2 of them, false, and nothing changes. Otherwise
  /// sets `bases` and `peaks`; the result says whether there are usable qualities and `qualities`
  /// is set. Both texts end at their first zero byte, so that they can be shorter than the calls.
  bool getBaseCalls(Tessaly::String& bases, Tessaly::String& qualities,
                    Tessaly::Vector<std::int32_t>& peaks) const;

  std::uint32_t pointCount() const { return pointCount_; }
  std::uint32_t baseCount() const { return baseCount_; }
  /// The base-calling program that the file names; empty when it names none.
  const Tessaly::String& callerName() const { return callerName_; }
  /// Of the unpacked copy: the moment of construction, in local time.
  Tessaly::String tempName() const;
  /// Of the last open(): 0 read, 1 not found, 2 no trace or an unreadable one.
  std::int32_t status() const { return status_; }

 private:
  // A file may claim more samples or bases than it holds. An unmet claim is filled with zeros only
  // up to this many entries; a larger one makes the trace unusable.
  static constexpr std::uint32_t unbackedCountLimit = 4'194'304;

  /// Reads the open file as what its first bytes say it is.
  bool readContent();

  // The readers return false when the trace is unusable; each allocates the arrays it fills.
  bool readAbif(std::uint32_t baseOffset);
  bool isBacked(const AbifDirectory& directory) const;
  bool readAbifChannels(const AbifDirectory& directory);
  void readAbifCalls(const AbifDirectory& directory);

  bool readScf();
  bool isBacked(const ScfHeader& header) const;
  void readScfSamples2(std::int32_t sampleSize);
  void readScfBases2();
  void readScfSamples3(std::int32_t sampleSize);
  void readScfBases3();
  void readScfComments();

  /// Whether a claim of `count` entries is accepted: it is within the limit, or the file holds all
  /// of its `byteCount` bytes from `offset` on.
  bool isBacked(std::uint32_t count, std::int64_t offset, std::int64_t byteCount) const;

  // Read `count` values from where the reader stands, with zeros from where the file ends.
  void fill(char* destination, std::size_t count);
  void fill(std::uint16_t* destination, std::size_t count);
  void fill(std::uint32_t* destination, std::size_t count);

  std::uint32_t pointCount_ = 0;
  std::unique_ptr<std::uint16_t[]> channels_[4];
  std::uint32_t baseCount_ = 0;
  std::unique_ptr<char[]> bases_;
  std::unique_ptr<char[]> qualities_;
  std::unique_ptr<std::uint32_t[]> peaks_;
  Tessaly::String directory_;
  std::time_t madeAt_;
  Tessaly::String callerName_;
  std::int32_t status_ = 0;
};

}  // namespace Quillet
