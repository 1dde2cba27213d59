#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"
#include "trace/trace_file.h"

using Samples = std::vector<std::uint16_t>;
using Peaks = std::vector<std::int32_t>;

/// A text of the given byte values, to compare quality texts with.
inline std::string bytes(const std::vector<int>& values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

/// `count` samples: `first`, `first` + 1, ...
inline Samples risingFrom(std::uint16_t first, std::size_t count = 12) {
  Samples samples(count);
  for (std::size_t i = 0; i < count; ++i) samples[i] = static_cast<std::uint16_t>(first + i);
  return samples;
}

/// The contents of one trace, read with the operations of TraceFile.
struct OpenedTrace {
  bool read = false;
  std::int32_t status = -1;
  Quillet::TraceFault fault = Quillet::TraceFault::none;
  std::int32_t lineCount = -1;
  bool isEmpty = false;
  // The rest is set only when the trace was read.
  std::uint32_t pointCount = 0;
  std::uint32_t baseCount = 0;
  Samples a, c, g, t;
  bool usable = false;
  std::string bases, qualities;
  Peaks peaks;
  std::string callerName;
};

inline void takeData(const Quillet::TraceFile& trace, OpenedTrace& opened) {
  std::unique_ptr<std::uint16_t[]> a, c, g, t;
  std::uint32_t count = 0;
  trace.newChannels(a, c, g, t, count);
  opened.a.assign(a.get(), a.get() + count);
  opened.c.assign(c.get(), c.get() + count);
  opened.g.assign(g.get(), g.get() + count);
  opened.t.assign(t.get(), t.get() + count);

  Tessaly::String bases, qualities;
  Tessaly::Vector<std::int32_t> peaks;
  opened.usable = trace.getBaseCalls(bases, qualities, peaks);
  opened.pointCount = trace.pointCount();
  opened.baseCount = trace.baseCount();
  opened.bases = textOf(bases);
  opened.qualities = textOf(qualities);
  opened.peaks.assign(peaks.data(), peaks.data() + peaks.size());
  opened.callerName = textOf(trace.callerName());
}

/// Opens the file at `path`.
inline OpenedTrace openPath(Tessaly::String path) {
  Quillet::TraceFile trace;
  OpenedTrace opened;
  opened.read = trace.open(path);
  opened.status = trace.status();
  opened.fault = trace.fault();
  opened.lineCount = trace.lineCount();
  opened.isEmpty = trace.pointCount() == 0 && trace.baseCount() == 0;
  if (opened.read) takeData(trace, opened);
  return opened;
}

/// Opens a trace file of the given bytes.
inline OpenedTrace openBytes(const ScratchFolder& folder, const std::string& content) {
  std::filesystem::remove(folder.path() / "trace");  // faster than overwriting
  return openPath(folder.write("trace", content));
}
inline OpenedTrace openBytes(const std::string& content) {
  return openBytes(ScratchFolder(), content);
}

/// Opens a trace file of the given bytes and of zeros up to `size` bytes.
inline OpenedTrace openBytesOfSize(const std::string& content, std::uintmax_t size) {
  const ScratchFolder folder;
  const Tessaly::String path = folder.write("trace", content);
  std::filesystem::resize_file(path.text(), size);
  return openPath(path);
}
