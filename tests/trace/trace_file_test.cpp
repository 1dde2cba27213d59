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
  std::unique_ptr<std::uint16_t[]> a, c, g, t;
  std::uint32_t count = 0;

  trace->newChannels(a, c, g, t, count);

  ASSERT_EQ(count, 12u);
  EXPECT_EQ(Samples(a.get(), a.get() + count), risingFrom(100));
  EXPECT_EQ(Samples(c.get(), c.get() + count), risingFrom(200));
  EXPECT_EQ(Samples(g.get(), g.get() + count), risingFrom(300));
  EXPECT_EQ(Samples(t.get(), t.get() + count), risingFrom(400));
  std::fill_n(a.get(), count, std::uint16_t{9});
  Samples kept(12);
  trace->copyChannel(kept.data(), 0);
  EXPECT_EQ(kept, risingFrom(100));
}

TEST(TraceFile, TheContentIsHandedOverWholeAndLeavesAnEmptyTrace) {
  ReadTrace trace(AbifBuilder().bases("ACGT").qualities({20, 0, 40, 250}).peaks({1, 4, 7, 10}));

  const Quillet::TraceContent content = trace->takeContent();

  ASSERT_EQ(content.channels.pointCount(), 12u);
  for (int channel = 0; channel < 4; ++channel) {
    const auto samples = content.channels[channel];
    EXPECT_EQ(Samples(samples.begin(), samples.end()),
              risingFrom(static_cast<std::uint16_t>(100 * (channel + 1))));
  }
  ASSERT_EQ(content.calls.count, 4u);
  EXPECT_EQ(trace->pointCount(), 0u);
  EXPECT_EQ(trace->baseCount(), 0u);
  Samples copy(1, 9);
  trace->copyChannel(copy.data(), 0);
  EXPECT_EQ(copy, Samples(1, 9));
}

TEST(TraceFile, TheContentHasTheCallsUntruncated) {
  using namespace std::string_literals;
  const ReadTrace trace(
      AbifBuilder().bases("AC\0T"s).qualities({20, 0, 40, 250}).peaks({1, 4, 7, 10}));
  const Quillet::BaseCalls& calls = trace->content().calls;

  ASSERT_EQ(calls.count, 4u);
  EXPECT_EQ(std::string(calls.bases.get(), 4), "AC\0T"s);
  EXPECT_EQ(std::vector<int>(calls.qualities.get(), calls.qualities.get() + 4),
            (std::vector<int>{20, 0, 40, 250}));
  EXPECT_EQ(std::vector<std::uint32_t>(calls.peaks.get(), calls.peaks.get() + 5),
            (std::vector<std::uint32_t>{1, 4, 7, 10, 12}));
}

TEST(TraceFile, OpensANameThatStaysAsItIs) {
  const ScratchFolder folder;
  const Tessaly::String path = folder.write("s.ab1", AbifBuilder().build());
  Quillet::TraceFile trace;

  EXPECT_TRUE(trace.open(path.text()));

  EXPECT_EQ(trace.pointCount(), 12u);
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
