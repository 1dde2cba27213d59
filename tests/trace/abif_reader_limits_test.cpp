#include <algorithm>
#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

using namespace std::string_literals;

// The largest count that a file may claim without holding it. Zeros take the place of the data.
constexpr std::uint32_t claimLimit = 4'194'304;

AbifBuilder withChannelCounts(std::uint32_t count) {
  AbifBuilder builder;
  for (std::uint32_t number = 9; number <= 12; ++number) builder.count("DATA", number, count);
  return builder;
}

AbifBuilder withCallCounts(std::uint32_t count) {
  return AbifBuilder().count("PBAS", 1, count).count("PCON", 1, count).count("PLOC", 1, count);
}

/// Makes an unused entry with this number the last one of the directory.
AbifBuilder& endingWith(AbifBuilder& builder, std::uint32_t number) {
  return builder.entry("LAST", number, "");
}

TEST(AbifReaderLimits, ANameIsUnreadableOnceTheFilesLastByteWasRead) {
  // Entries of 24 bytes, read with a stride of 12: between two of them another one is read, whose
  // name is an element count, and skipped. The file ends with the last entry's offset field.
  AbifBuilder builder;
  builder.stride(24).headerStride(12);

  EXPECT_TRUE(openBytes(builder.headerEntryCount(23).build()).read);
  EXPECT_FALSE(openBytes(builder.headerEntryCount(24).build()).read);
  EXPECT_TRUE(openBytes(builder.headerEntryCount(24).build() + '\0').read);
}

TEST(AbifReaderLimits, ADirectoryThatTheFileCutsShortFails) {
  // The last entry must be there up to its offset. Its last 4 bytes are not needed.
  const ScratchFolder folder;
  const std::string whole = AbifBuilder().build();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    EXPECT_EQ(openBytes(folder, AbifBuilder().truncatedTo(size).build()).read,
              size >= whole.size() - 4)
        << size;
  }
}

TEST(AbifReaderLimits, AnEntryThatIsNotUsedNeedsItsNameAndNumberOnly) {
  AbifBuilder builder;
  const std::string whole = endingWith(builder, 700).build();

  EXPECT_TRUE(openBytes(whole.substr(0, whole.size() - 28 + 8)).read);
  EXPECT_FALSE(openBytes(whole.substr(0, whole.size() - 28 + 7)).read);
  EXPECT_FALSE(openBytes(whole.substr(0, whole.size() - 28 + 3)).read);
  EXPECT_FALSE(openBytes(whole.substr(0, whole.size() - 28)).read);
}

TEST(AbifReaderLimits, ABaseOrderThatTheFileCutsShortFails) {
  AbifBuilder builder;
  const std::string whole = builder.last("FWO_", 1).build();
  const std::size_t order = whole.size() - 28 + 20;

  for (std::size_t held = 0; held < 4; ++held) {
    EXPECT_FALSE(openBytes(whole.substr(0, order + held)).read) << held;
  }
  EXPECT_TRUE(openBytes(whole.substr(0, order + 4)).read);
}

TEST(AbifReaderLimits, AFileThatEndsBeforeTheLettersOfALaterBaseOrderLeavesTheEarlierOne) {
  // The first order is "GATC". "DATA" 9 rises from 300; in the later order it is C.
  const std::string whole = AbifBuilder().entry("FWO_", 1, "CATG").build();
  const std::size_t order = whole.size() - 28 + 20;

  const OpenedTrace earlier = openBytes(whole.substr(0, order));
  EXPECT_EQ(earlier.status, 0);
  EXPECT_EQ(earlier.g, risingFrom(300));
  EXPECT_EQ(earlier.c, risingFrom(200));
  for (std::size_t held = 1; held < 4; ++held) {
    EXPECT_EQ(openBytes(whole.substr(0, order + held)).status, 2) << held;
  }
  const OpenedTrace later = openBytes(whole.substr(0, order + 4));
  EXPECT_EQ(later.g, risingFrom(200));
  EXPECT_EQ(later.c, risingFrom(300));
}

TEST(AbifReaderLimits, ArraysThatTheFileCutsShortHoldZerosFromThereOn) {
  // The directory comes first: a header of 128 bytes, twelve entries of 28 (up to 464), the data.
  const std::size_t directoryEnd = 464;
  const std::size_t wholeSize = AbifBuilder().directoryFirst().build().size();
  ASSERT_EQ(wholeSize, 602u);
  const ScratchFolder folder;
  const auto samplesHeld = [](std::size_t size, std::size_t offset) {
    return size <= offset ? 0 : std::min<std::size_t>((size - offset) / 2, 12);
  };
  const auto cutChannel = [](std::uint16_t first, std::size_t held) {
    Samples samples = risingFrom(first, held);
    samples.resize(12);
    return samples;
  };
  for (std::size_t size = 0; size <= wholeSize; ++size) {
    const OpenedTrace opened =
        openBytes(folder, AbifBuilder().directoryFirst().truncatedTo(size).build());

    ASSERT_EQ(opened.read, size >= directoryEnd - 4) << size;
    if (!opened.read) continue;
    EXPECT_EQ(opened.g, cutChannel(300, samplesHeld(size, 464))) << size;
    EXPECT_EQ(opened.a, cutChannel(100, samplesHeld(size, 488))) << size;
    EXPECT_EQ(opened.t, cutChannel(400, samplesHeld(size, 512))) << size;
    EXPECT_EQ(opened.c, cutChannel(200, samplesHeld(size, 536))) << size;
    // Texts end at their first zero byte.
    const auto textHeld = [&](std::size_t offset, const std::string& text) {
      return size <= offset ? "" : text.substr(0, size - offset);
    };
    EXPECT_EQ(opened.bases, textHeld(560, "ACGT")) << size;
    EXPECT_EQ(opened.qualities, textHeld(568, "((((")) << size;  // 40 is "("
    Peaks peaks{1, 4, 7, 10};
    for (std::size_t i = 0; i < 4; ++i) {
      if (size < 576 + 2 * i + 2) peaks[i] = 0;
    }
    peaks.push_back(12);
    EXPECT_EQ(opened.peaks, peaks) << size;
    EXPECT_EQ(opened.callerName, textHeld(593, "built.bcp")) << size;
  }
}

TEST(AbifReaderLimits, PositionsAreAddedUpModulo2To32) {
  // 0xFFFFFF80 + 128 is 0, the start of the prefix. 0xFFFFFFFF + 1 is 0, the start of "ABIF".
  const OpenedTrace channel =
      openBytes(AbifBuilder().prefix(128).dataOffset("DATA", 9, 0xFFFFFF80).build());
  EXPECT_EQ(channel.g, Samples(12, 0x2323));

  const OpenedTrace name =
      openBytes(AbifBuilder().dataOffset("SPAC", 2, 0xFFFFFFFF).count("SPAC", 2, 5).build());
  EXPECT_EQ(name.callerName, "ABIF");
}

TEST(AbifReaderLimits, NegativePositionsOfChannelsAndDirectoryFail) {
  for (std::uint32_t number = 9; number <= 12; ++number) {
    EXPECT_FALSE(openBytes(AbifBuilder().dataOffset("DATA", number, 0x80000000).build()).read);
  }
  for (const std::uint32_t offset : {0x80000000u, 0xFFFFFFF0u}) {
    EXPECT_FALSE(openBytes(AbifBuilder().headerDirectoryOffset(offset).build()).read);
  }
}

TEST(AbifReaderLimits, ADirectoryThatGoesOnAtByte2To31Fails) {
  // Twelve entries end exactly at that byte of a sparse file; a thirteenth follows.
  const std::size_t directorySize = 12 * 28;
  const std::uint32_t directoryOffset = 0x80000000u - directorySize;
  for (const bool goesOn : {false, true}) {
    const ScratchFolder folder;
    const std::string content = AbifBuilder()
                                    .headerDirectoryOffset(directoryOffset)
                                    .headerEntryCount(goesOn ? 13 : 12)
                                    .build();
    const std::size_t dataEnd = content.size() - directorySize;
    const Tessaly::String path = folder.write("trace", content.substr(0, dataEnd));
    std::ofstream stream(path.text(), std::ios::binary | std::ios::in);
    stream.seekp(directoryOffset);
    stream << content.substr(dataEnd) << std::string("LAST\0\0\2\0", 8) << std::string(100, ' ');
    stream.close();

    EXPECT_EQ(openPath(path).read, !goesOn);
  }
}

TEST(AbifReaderLimits, ChannelsPastTheEndOfTheFileAreZeros) {
  const OpenedTrace opened = openBytes(AbifBuilder().dataOffset("DATA", 9, 0x7FFFFF00).build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.g, Samples(12, 0));
  EXPECT_EQ(opened.a, risingFrom(100));
}

TEST(AbifReaderLimits, AFailedMoveToCallsOrCallerNameGoesOnFromWhereTheReaderStands) {
  // Data in turn: the channels, PBAS 1 and 2, PCON 1 and 2, PLOC 1 and 2, SPAC 2.
  const auto openWith = [](const char* name, std::uint32_t number) {
    return openBytes(AbifBuilder().dataOffset(name, number, 0x80000000).build());
  };
  EXPECT_EQ(openWith("PBAS", 1).bases, "ACGT");      // after the last channel
  EXPECT_EQ(openWith("PCON", 1).qualities, "NNNN");  // after PBAS 1: PBAS 2
  // After PCON 1: PCON 2, four bytes of 1, and then two peaks of PLOC 1.
  EXPECT_EQ(openWith("PLOC", 1).peaks, (Peaks{0x0101, 0x0101, 1, 4, 12}));
  // After PLOC 1: PLOC 2, eight zeros, and then the length byte of SPAC.
  EXPECT_EQ(openWith("SPAC", 2).callerName, "\0\0\0\0\0\0\0\0\x9"s);
  EXPECT_TRUE(openWith("SPAC", 2).read);
}

TEST(AbifReaderLimits, ALargeClaimThatTheFileDoesNotHoldFails) {
  for (const std::uint32_t count : {claimLimit + 1, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(openBytes(withChannelCounts(count).build()).status, 2) << count;
    EXPECT_EQ(openBytes(withCallCounts(count).build()).status, 2) << count;
  }
}

TEST(AbifReaderLimits, AnUnmetClaimUpToTheLimitIsFilledWithZeros) {
  const OpenedTrace points = openBytes(withChannelCounts(claimLimit).directoryFirst().build());
  ASSERT_TRUE(points.read);
  EXPECT_EQ(points.pointCount, claimLimit);
  EXPECT_EQ(Samples(points.c.begin(), points.c.begin() + 12), risingFrom(200));
  EXPECT_EQ(points.c.back(), 0);

  const OpenedTrace calls = openBytes(withCallCounts(claimLimit).directoryFirst().build());
  ASSERT_TRUE(calls.read);
  EXPECT_EQ(calls.baseCount, claimLimit);
  EXPECT_EQ(calls.peaks.size(), claimLimit + 1u);
  EXPECT_EQ(calls.peaks[0], 1);
  EXPECT_EQ(calls.peaks[claimLimit - 1], 0);
}

TEST(AbifReaderLimits, AClaimThatTheFileHoldsIsReadHoweverLarge) {
  // All arrays start at 0. The largest has two bytes in each element.
  const std::uint32_t count = claimLimit + 1;
  AbifBuilder points = withChannelCounts(count);
  for (std::uint32_t number = 9; number <= 12; ++number) points.dataOffset("DATA", number, 0);
  AbifBuilder calls = withCallCounts(count);
  for (const char* name : {"PBAS", "PCON", "PLOC"}) calls.dataOffset(name, 1, 0);
  for (const std::string& content : {points.build(), calls.build()}) {
    EXPECT_TRUE(openBytesOfSize(content, 2 * std::uintmax_t{count}).read);
    EXPECT_FALSE(openBytesOfSize(content, 2 * std::uintmax_t{count} - 1).read);
  }
}

TEST(AbifReaderLimits, EachChannelAndEachRunOfCallsMustHoldALargeClaim) {
  const std::uint32_t count = claimLimit + 1;
  const std::uintmax_t size = 2 * std::uintmax_t{count};
  const std::uint32_t beyond = 0x70000000;  // a position past the end
  for (std::uint32_t moved = 9; moved <= 12; ++moved) {
    AbifBuilder points = withChannelCounts(count);
    for (std::uint32_t number = 9; number <= 12; ++number) {
      points.dataOffset("DATA", number, number == moved ? beyond : 0);
    }
    EXPECT_FALSE(openBytesOfSize(points.build(), size).read) << moved;
  }
  for (const std::string moved : {"PBAS", "PCON", "PLOC"}) {
    AbifBuilder calls = withCallCounts(count);
    for (const std::string name : {"PBAS", "PCON", "PLOC"}) {
      calls.dataOffset(name, 1, name == moved ? beyond : 0);
    }
    EXPECT_FALSE(openBytesOfSize(calls.build(), size).read) << moved;
  }
}

TEST(AbifReaderLimits, ALargeClaimAfterAFailedMoveCountsFromWhereTheReaderStands) {
  // Bases and qualities start at 0; the peaks follow the qualities.
  const std::uint32_t count = claimLimit + 1;
  AbifBuilder calls = withCallCounts(count);
  calls.dataOffset("PBAS", 1, 0).dataOffset("PCON", 1, 0).dataOffset("PLOC", 1, 0x80000000);

  EXPECT_TRUE(openBytesOfSize(calls.build(), 3 * std::uintmax_t{count}).read);
  EXPECT_FALSE(openBytesOfSize(calls.build(), 3 * std::uintmax_t{count} - 1).read);
}

TEST(AbifReaderLimits, ALargeClaimAfterAFailedMoveToTheBasesFollowsTheLastChannel) {
  // The last channel's 12 samples stand so far back that the bases after them need the most room.
  const std::uint32_t count = claimLimit + 1;
  const std::uint32_t lastChannel = 4 * count;
  AbifBuilder calls = withCallCounts(count);
  calls.dataOffset("DATA", 12, lastChannel)
      .dataOffset("PBAS", 1, 0x80000000)
      .dataOffset("PCON", 1, 0)
      .dataOffset("PLOC", 1, 0);
  const std::uintmax_t needed = std::uintmax_t{lastChannel} + 2 * 12 + count;

  EXPECT_TRUE(openBytesOfSize(calls.build(), needed).read);
  EXPECT_FALSE(openBytesOfSize(calls.build(), needed - 1).read);
}

TEST(AbifReaderLimits, ALargeClaimAfterAFailedMoveToTheQualitiesFollowsTheBases) {
  const std::uint32_t count = claimLimit + 1;
  const std::uint32_t bases = 4 * count;
  AbifBuilder calls = withCallCounts(count);
  calls.dataOffset("PBAS", 1, bases).dataOffset("PCON", 1, 0x80000000).dataOffset("PLOC", 1, 0);
  const std::uintmax_t needed = std::uintmax_t{bases} + 2 * std::uintmax_t{count};

  EXPECT_TRUE(openBytesOfSize(calls.build(), needed).read);
  EXPECT_FALSE(openBytesOfSize(calls.build(), needed - 1).read);
}

TEST(AbifReaderLimits, AnEndlessDirectoryEndsWithTheFile) {
  using Clock = std::chrono::steady_clock;
  for (const std::uint16_t stride : std::initializer_list<std::uint16_t>{0, 1, 28, 65535}) {
    const std::string content =
        AbifBuilder().headerStride(stride).headerEntryCount(0xFFFFFFFF).build();

    const Clock::time_point start = Clock::now();
    const OpenedTrace opened = openBytes(content);

    EXPECT_EQ(opened.status, 2) << stride;
    // Reading four thousand million entries would take minutes.
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5)) << stride;
  }
}

}  // namespace
