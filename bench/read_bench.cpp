// Measures reading: sample arrays, a trace's directory, and a whole trace.

#include <benchmark/benchmark.h>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "bench/bench_trace.h"
#include "tests/support/scratch_folder.h"
#include "trace/file_reader.h"
#include "trace/trace_file.h"

namespace {

constexpr const char* fileName = "trace.ab1";

void sampleArrays(benchmark::State& state) {
  const ScratchFolder folder;
  const BenchTrace trace;
  folder.write(fileName, trace.file());
  std::vector<std::uint16_t> samples(trace.channels.pointCount());
  const auto count = static_cast<std::int32_t>(samples.size());
  Tessaly::FileReader reader;
  reader.open(fileName);
  for (auto _ : state) {
    reader.seek(128);  // after the header
    for (int channel = 0; channel < 4; ++channel) reader.readUInt16Array(samples.data(), count);
    benchmark::ClobberMemory();
  }
  state.counters["per sample"] = timeOfEach(4.0 * trace.channels.pointCount());
}

/// A trace with few samples and bases: most of the time goes into its directory.
void directoryWalk(benchmark::State& state) {
  const ScratchFolder folder;
  constexpr int entryCount = 1000;
  folder.write(fileName, AbifBuilder().otherEntries(entryCount).build());
  for (auto _ : state) {
    Quillet::TraceFile trace;
    Tessaly::String name(fileName);
    benchmark::DoNotOptimize(trace.open(name));
  }
  state.counters["per entry"] = timeOfEach(entryCount);
}

void wholeTrace(benchmark::State& state) {
  const ScratchFolder folder;
  const BenchTrace contents;
  folder.write(fileName, contents.file());
  for (auto _ : state) {
    Quillet::TraceFile trace;
    Tessaly::String name(fileName);
    benchmark::DoNotOptimize(trace.open(name));
  }
  state.counters["per sample"] = timeOfEach(4.0 * contents.channels.pointCount());
}

BENCHMARK(sampleArrays);
BENCHMARK(directoryWalk);
BENCHMARK(wholeTrace);

}  // namespace

BENCHMARK_MAIN();
