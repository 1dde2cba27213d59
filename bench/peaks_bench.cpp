// Measures the stages of the peak computation, each on the results of the stages before it.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <memory>

#include "bench/bench_trace.h"
#include "output/poly_stages.h"

namespace {

/// A trace with room for the results of all stages.
class Stages {
 public:
  explicit Stages(std::uint32_t seed) : trace_(seed), kept_(copyOf(trace_.channels)) {
    for (Quillet::ChannelPeakArrays& peaks : peaks_) {
      peaks.positions = std::make_unique<std::int32_t[]>(baseCount());
      peaks.heights = std::make_unique<std::uint32_t[]>(baseCount());
      peaks.normalisedHeights = std::make_unique<std::int32_t[]>(baseCount());
    }
    second_.bases = std::make_unique<char[]>(baseCount());
    second_.positions = std::make_unique<std::int32_t[]>(baseCount());
  }

  std::uint32_t pointCount() const { return trace_.channels.pointCount(); }
  std::uint32_t baseCount() const { return static_cast<std::uint32_t>(trace_.baseCount()); }

  /// Resets the channels to those of the last keep(), or to the raw ones before any.
  void restore() { copy(kept_, trace_.channels); }
  void keep() { copy(trace_.channels, kept_); }

  void scale() { Quillet::scaleToFullRange(trace_.channels); }
  void balance() { averages_ = Quillet::balanceChannels(trace_.channels); }
  void find() {
    Quillet::findPeaks({trace_.channels, trace_.bases, trace_.peaks.data()}, maxima_.get(), peaks_);
  }
  void normalise() {
    for (int c = 0; c < Quillet::channelCount; ++c) {
      const auto index = static_cast<std::size_t>(c);
      Quillet::normaliseAreas(trace_.channels[c], averages_[index], trace_.baseCount(),
                              zeros_.get(), peaks_[index]);
    }
  }
  void choose() { Quillet::chooseSecondPeaks(trace_.bases, peaks_, second_); }

 private:
  static void copy(const Quillet::Channels& from, Quillet::Channels& to) {
    for (int c = 0; c < Quillet::channelCount; ++c) std::ranges::copy(from[c], to[c].begin());
  }
  static Quillet::Channels copyOf(const Quillet::Channels& channels) {
    Quillet::Channels result(channels.pointCount());
    copy(channels, result);
    return result;
  }

  BenchTrace trace_;
  Quillet::Channels kept_;
  Quillet::ChannelAverages averages_{};
  Quillet::PeakTable peaks_;
  Quillet::SecondPeakArrays second_;
  std::unique_ptr<std::int16_t[]> maxima_ = std::make_unique<std::int16_t[]>(4 * pointCount());
  std::unique_ptr<std::uint64_t[]> zeros_ =
      std::make_unique<std::uint64_t[]>(Quillet::zeroWordCount(pointCount()));
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
