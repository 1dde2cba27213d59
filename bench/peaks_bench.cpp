// Measures the stages of the peak computation, each on the results of the stages before it.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <memory>

#include "bench/bench_trace.h"
#include "output/poly_peaks.h"

namespace {

/// A trace with room for the results of all stages.
class Stages {
 public:
  explicit Stages(std::uint32_t seed) : trace_(seed) {
    for (int c = 0; c < 4; ++c) {
      channels_[c] = add(samples_, pointCount());
      peakPos_[c] = add(positions_, baseCount());
      normAmp_[c] = add(positions_, baseCount());
      peakAmp_[c] = add(heights_, baseCount());
    }
    restore();
  }

  std::uint32_t pointCount() const { return trace_.pointCount(); }
  std::uint32_t baseCount() const { return static_cast<std::uint32_t>(trace_.baseCount()); }

  /// Resets the channels to those of the last keep(), or to the raw ones before any.
  void restore() {
    for (std::size_t c = 0; c < 4; ++c) std::copy_n(kept_[c].begin(), pointCount(), channels_[c]);
  }
  void keep() {
    for (std::size_t c = 0; c < 4; ++c) kept_[c].assign(channels_[c], channels_[c] + pointCount());
  }

  void scale() { Quillet::scaleToFullRange(channels_, pointCount()); }
  void balance() {
    Quillet::balanceChannels(channels_, pointCount(), summedSignal_.get(), averages_);
  }
  void find() {
    Quillet::findPeaks({channels_, pointCount(), trace_.bases, trace_.peaks.data()}, maxima_.get(),
                       peakPos_, peakAmp_);
  }
  void normalise() {
    for (int c = 0; c < 4; ++c) {
      Quillet::normaliseAreas(channels_[c], pointCount(), averages_[c], peakPos_[c], peakAmp_[c],
                              trace_.baseCount(), zeros_.get(), normAmp_[c]);
    }
  }
  void choose() {
    Quillet::chooseSecondPeaks(trace_.bases, {peakPos_[0], peakPos_[1], peakPos_[2], peakPos_[3]},
                               {peakAmp_[0], peakAmp_[1], peakAmp_[2], peakAmp_[3]},
                               secondBase_.get(), secondPos_.get());
  }

 private:
  template <typename Value>
  using Arrays = std::vector<std::unique_ptr<Value[]>>;
  template <typename Value>
  static Value* add(Arrays<Value>& arrays, std::size_t size) {
    return arrays.emplace_back(std::make_unique<Value[]>(size)).get();
  }

  BenchTrace trace_;
  std::array<std::vector<std::uint16_t>, 4> kept_ = trace_.channels;
  Arrays<std::uint16_t> samples_;
  Arrays<std::int32_t> positions_;
  Arrays<std::uint32_t> heights_;
  std::uint16_t* channels_[4];
  std::unique_ptr<std::int16_t[]> maxima_ = std::make_unique<std::int16_t[]>(4 * pointCount());
  std::int32_t* peakPos_[4];
  std::uint32_t* peakAmp_[4];
  std::int32_t* normAmp_[4];
  std::unique_ptr<std::uint16_t[]> summedSignal_ =
      std::make_unique<std::uint16_t[]>(Quillet::summedSignalSize);
  std::unique_ptr<std::uint64_t[]> zeros_ =
      std::make_unique<std::uint64_t[]>(Quillet::zeroWordCount(pointCount()));
  std::unique_ptr<char[]> secondBase_ = std::make_unique<char[]>(baseCount());
  std::unique_ptr<std::int32_t[]> secondPos_ = std::make_unique<std::int32_t[]>(baseCount());
  float averages_[4] = {};
};

void prepareNothing(Stages&) {}

void prepareScaled(Stages& stages) {
  stages.scale();
  stages.keep();
}

void prepareBalanced(Stages& stages) {
  stages.scale();
  stages.balance();
}

void prepareFound(Stages& stages) {
  prepareBalanced(stages);
  stages.find();
}

/// Measures a step on several traces in turn, so that the branch predictor can not learn one trace.
template <typename Prepare, typename Step>
void measure(benchmark::State& state, Prepare prepare, Step step) {
  constexpr std::uint32_t traceCount = 32;
  std::vector<std::unique_ptr<Stages>> traces;
  double pointCount = 0;
  double baseCount = 0;
  for (std::uint32_t seed = 1; seed <= traceCount; ++seed) {
    traces.push_back(std::make_unique<Stages>(seed));
    prepare(*traces.back());
    pointCount += traces.back()->pointCount();
    baseCount += traces.back()->baseCount();
  }
  for (auto _ : state) {
    for (const auto& stages : traces) step(*stages);
    benchmark::ClobberMemory();
  }
  state.counters["per sample"] = timeOfEach(4 * pointCount);
  state.counters["per base"] = timeOfEach(baseCount);
}

void copyChannels(benchmark::State& state) {
  measure(state, prepareNothing, [](Stages& stages) { stages.restore(); });
}

// The first two stages change the channels, so each pass copies them first.

void scaleToFullRange(benchmark::State& state) {
  measure(state, prepareNothing, [](Stages& stages) {
    stages.restore();
    stages.scale();
  });
}

void balanceChannels(benchmark::State& state) {
  measure(state, prepareScaled, [](Stages& stages) {
    stages.restore();
    stages.balance();
  });
}

void findPeaks(benchmark::State& state) {
  measure(state, prepareBalanced, [](Stages& stages) { stages.find(); });
}

void normaliseAreas(benchmark::State& state) {
  measure(state, prepareFound, [](Stages& stages) { stages.normalise(); });
}

void chooseSecondPeaks(benchmark::State& state) {
  measure(state, prepareFound, [](Stages& stages) { stages.choose(); });
}

BENCHMARK(copyChannels);
BENCHMARK(scaleToFullRange);
BENCHMARK(balanceChannels);
BENCHMARK(findPeaks);
BENCHMARK(normaliseAreas);
BENCHMARK(chooseSecondPeaks);

}  // namespace

BENCHMARK_MAIN();
