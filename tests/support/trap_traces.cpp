#include "tests/support/trap_traces.h"

#include <algorithm>
#include <stdexcept>
#include <zlib.h>

TraceContents TrapTraces::contents(int baseCount) {
  constexpr int samplesPerBase = 6;
  const int sampleCount = samplesPerBase * (baseCount + 1);
  TraceContents trace;
  for (std::vector<int>& channel : trace.channels) {
    for (int i = 0; i < sampleCount; ++i) channel.push_back(between(0, 3000));
  }
  for (int i = 0; i < baseCount; ++i) {
    trace.bases += "ACGT"[below(4)];
    trace.qualities.push_back(between(10, 60));
    trace.peaks.push_back(samplesPerBase * i + between(1, samplesPerBase));
  }
  return trace;
}

std::string TrapTraces::called() {
  const TraceContents trace = contents(below(6) == 0 ? between(60, 80) : between(8, 39));
  switch (below(4)) {
    case 0:
      return trace.scf().build();
    case 1:
      return trace.abif().prefix(128).build();
    default:
      return trace.abif().build();
  }
}

std::string TrapTraces::calledScf(int baseCount) { return contents(baseCount).scf().build(); }

std::string TrapTraces::withoutCalls() {
  TraceContents trace = contents(between(8, 39));
  trace.bases.clear();
  trace.qualities.clear();
  trace.peaks.clear();
  return below(3) == 0 ? trace.scf().build() : trace.abif().build();
}

std::string TrapTraces::withPlaceholders() {
  TraceContents trace = contents(below(3) == 0 ? between(60, 80) : between(8, 39));
  static const std::vector<int> placeholders{0, 1, 9, 128, 255};
  std::fill(trace.qualities.begin(), trace.qualities.end(), anyOf(placeholders));
  return trace.abif().build();
}

std::string TrapTraces::refused() {
  TraceContents trace = contents(between(60, 80));
  trace.qualities[50] = 0;
  return trace.abif().build();
}

std::string TrapTraces::damaged() {
  std::string bytes = called();
  switch (below(3)) {
    case 0:
      return "";
    case 1:
      return "<html><body>503</body></html>\n";
    default:
      bytes.resize(60);
      return bytes;
  }
}

std::string gzip(const std::string& bytes) {
  constexpr int gzipWindow = 15 + 16;  // the largest window, in a gzip member
  z_stream stream{};
  if (deflateInit2(&stream, 6, Z_DEFLATED, gzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("can not start zlib");
  }
  std::string packed(deflateBound(&stream, bytes.size()), '\0');
  // zlib does not write to its input.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::string inTwoMembers(const std::string& bytes) {
  return gzip(bytes.substr(0, bytes.size() / 3)) + gzip(bytes.substr(bytes.size() / 3));
}

std::string withFlippedByte(std::string bytes, std::size_t offset) {
  bytes[offset] = static_cast<char>(~bytes[offset]);
  return bytes;
}
