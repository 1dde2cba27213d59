#include "trace/trace_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "foundation/clock.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/text_of.h"
#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

/// A trace that was opened and read.
class ReadTrace {
 public:
  explicit ReadTrace(const AbifBuilder& builder) {
    Tessaly::String path = folder_.write("trace", builder.build());
    EXPECT_TRUE(trace_.open(path));
  }
  const Quillet::TraceFile* operator->() const { return &trace_; }
  Quillet::TraceFile* operator->() { return &trace_; }

 private:
  ScratchFolder folder_;
  Quillet::TraceFile trace_;
};

/// The caller's values from an earlier trace.
struct Held {
  Tessaly::String bases{"earlier bases"};
  Tessaly::String qualities{"earlier qualities"};
  Tessaly::Vector<std::int32_t> peaks;

  Held() {
    const std::int32_t values[] = {7, 8};
    peaks.assign(values, 2);
  }
  Peaks peakValues() const { return {peaks.data(), peaks.data() + peaks.size()}; }
};

TEST(TraceFile, IsEmptyBeforeItIsOpened) {
  const Quillet::TraceFile trace;

  EXPECT_EQ(trace.pointCount(), 0u);
  EXPECT_EQ(trace.baseCount(), 0u);
  EXPECT_EQ(trace.callerName(), "");
}

TEST(TraceFile, TheTemporaryNameHoldsTheMomentOfConstruction) {
  const char* const pattern = "temp%y%M%D%h%m%s";

  const Tessaly::String before = Tessaly::Clock().format(pattern);
  const Quillet::TraceFile trace;
  const Tessaly::String after = Tessaly::Clock().format(pattern);

  EXPECT_EQ(trace.tempName().length(), 4 + 12);
  EXPECT_GE(textOf(trace.tempName()), textOf(before));
  EXPECT_LE(textOf(trace.tempName()), textOf(after));
}

TEST(TraceFile, CopyChannelCopiesInTheOrderACGT) {
  const ReadTrace trace((AbifBuilder()));
  const Samples expected[] = {risingFrom(100), risingFrom(200), risingFrom(300), risingFrom(400)};

  for (std::uint32_t index = 0; index < 4; ++index) {
    Samples copy(12);
    trace->copyChannel(copy.data(), index);
    EXPECT_EQ(copy, expected[index]) << index;
  }
}

TEST(TraceFile, CopyChannelWithIndex4CopiesNothing) {
  const ReadTrace trace((AbifBuilder()));

  for (const std::uint32_t index : {4u, 5u, 0xFFFFFFFFu}) {
    Samples copy(12, 9);
    trace->copyChannel(copy.data(), index);
    EXPECT_EQ(copy, Samples(12, 9)) << index;
  }
}

TEST(TraceFile, CopyChannelsCopiesAllFour) {
  const ReadTrace trace((AbifBuilder()));
  Samples a(13, 9), c(13, 9), g(13, 9), t(13, 9);

  trace->copyChannels(a.data(), c.data(), g.data(), t.data());

  for (const Samples* copy : {&a, &c, &g, &t}) EXPECT_EQ(copy->back(), 9);  // after the last sample
  for (Samples* copy : {&a, &c, &g, &t}) copy->pop_back();
  EXPECT_EQ(a, risingFrom(100));
  EXPECT_EQ(c, risingFrom(200));
  EXPECT_EQ(g, risingFrom(300));
  EXPECT_EQ(t, risingFrom(400));
}

TEST(TraceFile, NewChannelsGivesCopiesToOwn) {
  const ReadTrace trace((AbifBuilder()));
  std::unique_ptr<std::uint16_t[]> channels[4];
  std::uint32_t count = 0;

  trace->newChannels(channels, count);
  for (auto& channel : channels) std::fill_n(channel.get(), count, std::uint16_t{9});

  EXPECT_EQ(count, 12u);
  Samples kept(12);
  trace->copyChannel(kept.data(), 0);
  EXPECT_EQ(kept, risingFrom(100));
}

TEST(TraceFile, ReleaseChannelsGivesTheChannelsThemselvesInTheOrderACGT) {
  ReadTrace trace((AbifBuilder()));
  std::unique_ptr<std::uint16_t[]> channels[4];
  std::uint32_t count = 0;

  trace->releaseChannels(channels, count);

  ASSERT_EQ(count, 12u);
  for (std::uint16_t index = 0; index < 4; ++index) {
    const Samples samples(channels[index].get(), channels[index].get() + count);
    EXPECT_EQ(samples, risingFrom(static_cast<std::uint16_t>(100 * (index + 1)))) << index;
  }
}

TEST(TraceFile, ATraceWhoseChannelsAreReleasedHasNoSamplesAndKeepsItsCalls) {
  ReadTrace trace(AbifBuilder().bases("ACGT").qualities({20, 30, 40, 50}).peaks({1, 4, 7, 10}));
  std::unique_ptr<std::uint16_t[]> channels[4];
  std::uint32_t count = 0;

  trace->releaseChannels(channels, count);

  Held calls;
  EXPECT_TRUE(trace->getBaseCalls(calls.bases, calls.qualities, calls.peaks));
  EXPECT_EQ(calls.bases, "ACGT");
  EXPECT_EQ(calls.peakValues(), (Peaks{1, 4, 7, 10, 12}));
  EXPECT_EQ(trace->pointCount(), 0u);
  Samples copy(1, 9);
  trace->copyChannel(copy.data(), 0);
  EXPECT_EQ(copy, Samples(1, 9));
  trace->releaseChannels(channels, count);  // once more: none are left
  EXPECT_EQ(count, 0u);
}

TEST(TraceFile, BaseCallsReplaceWhatTheCallerHeld) {
  const ReadTrace trace(AbifBuilder().bases("ACGTn").qualities({10, 20, 30, 40, 50}));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_TRUE(usable);
  EXPECT_EQ(held.bases, "ACGTn");
  EXPECT_EQ(textOf(held.qualities), bytes({10, 20, 30, 40, 50}));
  EXPECT_EQ(held.peakValues(), (Peaks{1, 4, 7, 10, 13, 12}));
}

TEST(TraceFile, QualitiesOf0To9LeaveTheQualityTextUntouchedButSetBasesAndPeaks) {
  const ReadTrace trace(AbifBuilder().bases("ACGTA").qualities({0, 9, 5, 1, 9}));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_FALSE(usable);
  EXPECT_EQ(held.qualities, "earlier qualities");
  EXPECT_EQ(held.bases, "ACGTA");
  EXPECT_EQ(held.peakValues(), (Peaks{1, 4, 7, 10, 13, 12}));
}

TEST(TraceFile, QualitiesOf200OnlyCountAsNone) {
  const ReadTrace trace(AbifBuilder().qualities({200, 200, 200, 200}));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_FALSE(usable);
  EXPECT_EQ(held.qualities, "earlier qualities");
  EXPECT_EQ(held.bases, "ACGT");
}

TEST(TraceFile, OneQualityFrom10To127MakesAllUsable) {
  struct Case {
    std::vector<int> qualities;
    bool usable;
  };
  for (const Case& one : {Case{{9, 9, 9, 9}, false}, Case{{9, 9, 9, 10}, true},
                          Case{{1, 127, 1, 1}, true}, Case{{9, 128, 9, 9}, false},
                          Case{{255, 128, 9, 1}, false}, Case{{200, 10, 200, 1}, true}}) {
    const ReadTrace trace(AbifBuilder().qualities(one.qualities));
    Held held;

    EXPECT_EQ(trace->getBaseCalls(held.bases, held.qualities, held.peaks), one.usable);
    EXPECT_EQ(textOf(held.qualities), one.usable ? bytes(one.qualities) : "earlier qualities");
  }
}

TEST(TraceFile, AZeroQualityEndsTheQualityText) {
  const ReadTrace trace(AbifBuilder().qualities({20, 30, 0, 40}));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_TRUE(usable);
  EXPECT_EQ(textOf(held.qualities), bytes({20, 30}));
  EXPECT_EQ(held.bases, "ACGT");
}

TEST(TraceFile, AUsableQualityAfterAZeroCountsAlthoughItIsCutOff) {
  const ReadTrace trace(AbifBuilder().qualities({0, 30, 30, 30}));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_TRUE(usable);
  EXPECT_EQ(held.qualities.length(), 0);
}

TEST(TraceFile, AZeroByteAmongTheBasesEndsTheirText) {
  const ReadTrace trace(AbifBuilder().bases(std::string("AC\0TA", 5)));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_TRUE(usable);
  EXPECT_EQ(held.bases, "AC");
  EXPECT_EQ(textOf(held.qualities), bytes({40, 40, 40, 40, 40}));
  EXPECT_EQ(held.peaks.size(), 6);
}

TEST(TraceFile, NoBaseCallsGiveFalseAndSetNothingButChannelsAreThere) {
  const ReadTrace trace(AbifBuilder().without("PBAS", 1));
  Held held;

  const bool usable = trace->getBaseCalls(held.bases, held.qualities, held.peaks);

  EXPECT_FALSE(usable);
  EXPECT_EQ(held.bases, "earlier bases");
  EXPECT_EQ(held.qualities, "earlier qualities");
  EXPECT_EQ(held.peakValues(), (Peaks{7, 8}));
  Samples t(12);
  trace->copyChannel(t.data(), 3);
  EXPECT_EQ(t, risingFrom(400));
}

TEST(TraceFile, PeaksAreOneMoreThanTheBasesAndEndWithThePointCount) {
  for (const std::string letters : {"A", "ACGTACGT"}) {
    const ReadTrace trace(AbifBuilder().bases(letters));
    Held held;

    trace->getBaseCalls(held.bases, held.qualities, held.peaks);

    EXPECT_EQ(held.peaks.size(), held.bases.length() + 1);
    EXPECT_EQ(held.peakValues().back(), 12);
  }
}

TEST(TraceFile, TheDirectoryStandsInFrontOfEveryNameAndGetsASlash) {
  const ScratchFolder folder;
  folder.write("traces/one", AbifBuilder().build());
  for (const char* directory : {"traces", "traces/"}) {
    Quillet::TraceFile trace;
    Tessaly::String name("one");

    trace.setDirectory(directory);

    EXPECT_TRUE(trace.open(name)) << directory;
    EXPECT_EQ(name, "one");
  }
}

TEST(TraceFile, SetDirectoryWithAnEmptyTextGivesThePrefixSlash) {
  const ScratchFolder folder;
  const Tessaly::String path = folder.write("one", AbifBuilder().build());
  Quillet::TraceFile trace;
  Tessaly::String fromRoot(path.text() + 1);  // the absolute path without its "/"

  trace.setDirectory("");

  EXPECT_TRUE(trace.open(fromRoot));
}

}  // namespace
