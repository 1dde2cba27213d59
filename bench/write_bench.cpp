// Measures writing: the text of numbers, the writer, and the two result files.

#include <benchmark/benchmark.h>
#include <cstdint>
#include <filesystem>
#include <random>
#include <vector>

#include "bench/bench_trace.h"
#include "output/decimal.h"
#include "output/file_writer.h"
#include "output/phd_file.h"
#include "output/poly_file.h"
#include "output/poly_peaks.h"

namespace {

constexpr const char* sink = "/dev/null";

/// Numbers like those in result files: one to eight digits, in random order.
std::vector<std::int32_t> mixedNumbers() {
  std::mt19937 random(1);
  std::vector<std::int32_t> numbers;
  for (int i = 0; i < 4096; ++i) {
    std::int32_t limit = 10;
    for (std::uint32_t digits = random() % 8; digits > 0; --digits) limit *= 10;
    numbers.push_back(static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(limit)));
  }
  return numbers;
}

void numberText(benchmark::State& state) {
  const std::vector<std::int32_t> numbers = mixedNumbers();
  for (auto _ : state) {
    char text[Quillet::longestDecimal];
    for (const std::int32_t number : numbers) {
      benchmark::DoNotOptimize(Quillet::putDecimal(text, number));
      benchmark::ClobberMemory();
    }
  }
  state.counters["per number"] = timeOfEach(static_cast<double>(numbers.size()));
}

/// Numbers like those in most columns: heights and positions.
void shortNumberText(benchmark::State& state) {
  std::vector<std::int32_t> numbers = mixedNumbers();
  for (std::int32_t& number : numbers) number %= 65281;
  for (auto _ : state) {
    char text[Quillet::longestDecimal];
    for (const std::int32_t number : numbers) {
      benchmark::DoNotOptimize(Quillet::putShortDecimal(text, number));
      benchmark::ClobberMemory();
    }
  }
  state.counters["per number"] = timeOfEach(static_cast<double>(numbers.size()));
}

void writerNumbers(benchmark::State& state) {
  const std::vector<std::int32_t> numbers = mixedNumbers();
  Tessaly::FileWriter writer;
  writer.open(sink);
  for (auto _ : state) {
    for (const std::int32_t number : numbers) writer.writeWord(number);
  }
  writer.close();
  state.counters["per number"] = timeOfEach(static_cast<double>(numbers.size()));
}

void writerBytes(benchmark::State& state) {
  const std::vector<char> bytes(100, 'x');
  Tessaly::FileWriter writer;
  writer.open(sink);
  for (auto _ : state) writer.writeBytes(bytes.data(), 100);
  writer.close();
  state.counters["per byte"] = timeOfEach(100);
}

void phdFile(benchmark::State& state) {
  const BenchTrace trace;
  Tessaly::FileWriter writer;
  for (auto _ : state) {
    Quillet::writePhdFile(writer, sink,
                          {.sampleName = "sample",
                           .callerName = "KB 1.4",
                           .timeText = "Sun Nov 15 12:04:40 2026",
                           .pointCount = trace.channels.pointCount(),
                           .bases = trace.bases,
                           .qualities = trace.qualities,
                           .peaks = trace.peaks.data()});
  }
  state.counters["per base"] = timeOfEach(trace.baseCount());
}

void polyFile(benchmark::State& state) {
  BenchTrace trace;
  Quillet::PolyPeaks found;
  found.compute({trace.channels, trace.bases, trace.peaks.data()});
  Tessaly::FileWriter writer;
  for (auto _ : state) {
    Quillet::writePolyFile(writer, sink,
                           {.sampleName = "sample",
                            .bases = trace.bases,
                            .peaks = trace.peaks.data(),
                            .found = found});
  }
  state.counters["per base"] = timeOfEach(trace.baseCount());
}

BENCHMARK(numberText);
BENCHMARK(shortNumberText);
BENCHMARK(writerNumbers);
BENCHMARK(writerBytes);
BENCHMARK(phdFile);
BENCHMARK(polyFile);

}  // namespace

BENCHMARK_MAIN();
