#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

using namespace std::string_literals;

/// Makes an unused entry with this number the last one of the directory.
AbifBuilder& endingWith(AbifBuilder& builder, std::uint32_t number) {
  return builder.entry("LAST", number, "");
}

TEST(AbifReader, ReadsChannelsCallsAndCallerName) {
  const OpenedTrace opened = openBytes(AbifBuilder().build());

  EXPECT_EQ(opened.status, 0);
  EXPECT_EQ(opened.pointCount, 12u);
  EXPECT_EQ(opened.a, risingFrom(100));
  EXPECT_EQ(opened.c, risingFrom(200));
  EXPECT_EQ(opened.g, risingFrom(300));
  EXPECT_EQ(opened.t, risingFrom(400));
  EXPECT_EQ(opened.baseCount, 4u);
  EXPECT_EQ(opened.bases, "ACGT");
  EXPECT_EQ(opened.qualities, bytes({40, 40, 40, 40}));
  EXPECT_EQ(opened.peaks, (Peaks{1, 4, 7, 10, 12}));
  EXPECT_EQ(opened.callerName, "built.bcp");
}

TEST(AbifReader, TakesSamplesQualitiesAndPeaksAsStored) {
  const OpenedTrace opened = openBytes(AbifBuilder()
                                           .channel('A', {0, 1, 255, 256, 32767, 32768, 65535})
                                           .channel('C', {1, 0, 0, 0, 0, 0, 0})
                                           .channel('G', {2, 0, 0, 0, 0, 0, 0})
                                           .channel('T', {3, 0, 0, 0, 0, 0, 0})
                                           .bases("nR-*")
                                           .qualities({1, 99, 128, 255})
                                           .peaks({65535, 3, 2, 40000})
                                           .build());

  EXPECT_EQ(opened.a, (Samples{0, 1, 255, 256, 32767, 32768, 65535}));
  EXPECT_EQ(opened.bases, "nR-*");
  EXPECT_EQ(opened.qualities, bytes({1, 99, 128, 255}));
  EXPECT_EQ(opened.peaks, (Peaks{65535, 3, 2, 40000, 7}));
}

TEST(AbifReader, EveryBaseOrderGivesTheSameChannels) {
  const ScratchFolder folder;
  std::string order = "ACGT";
  do {
    const OpenedTrace opened = openBytes(folder, AbifBuilder().baseOrder(order).build());

    EXPECT_EQ(opened.a, risingFrom(100)) << order;
    EXPECT_EQ(opened.c, risingFrom(200)) << order;
    EXPECT_EQ(opened.g, risingFrom(300)) << order;
    EXPECT_EQ(opened.t, risingFrom(400)) << order;
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(AbifReader, BaseOrderACGTMapsData9To12StraightToACGT) {
  AbifBuilder builder;
  builder.baseOrder("ACGT");
  for (int number = 9; number <= 12; ++number) {  // each: three samples with its number
    builder.entry("DATA", static_cast<std::uint32_t>(number),
                  bytes({0, number, 0, number, 0, number}), 2);
  }

  const OpenedTrace opened = openBytes(builder.build());

  EXPECT_EQ(opened.a, Samples(3, 9));
  EXPECT_EQ(opened.c, Samples(3, 10));
  EXPECT_EQ(opened.g, Samples(3, 11));
  EXPECT_EQ(opened.t, Samples(3, 12));
}

TEST(AbifReader, ABrokenBaseOrderFails) {
  for (const char* order : {"", "GAT", "GATCG", "GATN", "gatc", "GA C"}) {
    const OpenedTrace opened = openBytes(AbifBuilder().baseOrder(order).build());

    EXPECT_FALSE(opened.read) << order;
    EXPECT_EQ(opened.status, 2) << order;
  }
  EXPECT_FALSE(openBytes(AbifBuilder().without("FWO_", 1).build()).read);
  EXPECT_FALSE(openBytes(AbifBuilder().dataSize("FWO_", 1, 5).build()).read);
  EXPECT_FALSE(openBytes(AbifBuilder().without("FWO_", 1).entry("FWO_", 2, "GATC").build()).read);
}

// The entry holds all four letters whatever it says.
TEST(AbifReader, ABaseOrderOfAnotherDataSizeThan4IsIgnored) {
  for (const std::uint32_t size : {0u, 1u, 2u, 3u, 5u, 0xFFFFFFFFu}) {
    const AbifBuilder alone = AbifBuilder().dataSize("FWO_", 1, size);
    const AbifBuilder later = AbifBuilder().entry("FWO_", 1, "CATG").dataSize("FWO_", 1, size);

    EXPECT_FALSE(openBytes(alone.build()).read) << size;
    EXPECT_EQ(openBytes(later.build()).g, risingFrom(300)) << size;
  }
}

TEST(AbifReader, ABaseOrderNamingOneLetterTwiceFillsThatChannelTwiceAndLeavesTheMissingOneZero) {
  // "DATA" 9 rises from 500 and "DATA" 11 from 700. Both are G; the later one is kept.
  const OpenedTrace opened = openBytes(AbifBuilder().baseOrder("GAGC").build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.a, risingFrom(100));
  EXPECT_EQ(opened.c, risingFrom(200));
  EXPECT_EQ(opened.g, risingFrom(700));
  EXPECT_EQ(opened.t, Samples(12, 0));
}

TEST(AbifReader, AfterAPrefixDirectoryAndChannelsAreRelativeAndCallsAreNot) {
  const OpenedTrace opened = openBytes(AbifBuilder().bases("ACGTA").prefix(128).build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.a, risingFrom(100));
  EXPECT_EQ(opened.c, risingFrom(200));
  EXPECT_EQ(opened.g, risingFrom(300));
  EXPECT_EQ(opened.t, risingFrom(400));
  EXPECT_EQ(opened.bases, "ACGTA");
  EXPECT_EQ(opened.qualities, bytes({40, 40, 40, 40, 40}));
  EXPECT_EQ(opened.peaks, (Peaks{1, 4, 7, 10, 13, 12}));
  EXPECT_EQ(opened.callerName, "built.bcp");
}

TEST(AbifReader, AfterAPrefixTheLastOccurrenceOfAChannelWins) {
  AbifBuilder builder;
  builder.prefix(128).baseOrder("ACGT");
  for (int number = 9; number <= 12; ++number) {  // each: twelve samples with its number
    builder.entry("DATA", static_cast<std::uint32_t>(number), bytes(std::vector<int>(24, number)),
                  2);
  }

  const OpenedTrace opened = openBytes(builder.build());

  EXPECT_EQ(opened.a, Samples(12, 0x0909));
  EXPECT_EQ(opened.c, Samples(12, 0x0A0A));
  EXPECT_EQ(opened.g, Samples(12, 0x0B0B));
  EXPECT_EQ(opened.t, Samples(12, 0x0C0C));
}

TEST(AbifReader, AfterAPrefixOffset0IsThePrefixForCallsAndTheMagicForChannels) {
  // The prefix is made of "#" (0x23). SPAC skips one byte.
  const OpenedTrace opened = openBytes(AbifBuilder()
                                           .prefix(128)
                                           .dataOffset("PBAS", 1, 0)
                                           .dataOffset("PCON", 1, 0)
                                           .dataOffset("PLOC", 1, 0)
                                           .dataOffset("SPAC", 2, 0)
                                           .dataOffset("DATA", 9, 0)
                                           .build());

  EXPECT_EQ(opened.bases, "####");
  EXPECT_EQ(opened.qualities, "####");
  EXPECT_EQ(opened.peaks, (Peaks{0x2323, 0x2323, 0x2323, 0x2323, 12}));
  EXPECT_EQ(opened.callerName, "#########");
  EXPECT_EQ(Samples(opened.g.begin(), opened.g.begin() + 2), (Samples{0x4142, 0x4946}));  // "ABIF"
}

TEST(AbifReader, CallOffsetsThatCountFromTheMagicAreNotCorrected) {
  // As stored, "PBAS" is at 224, which is byte 96 of the header that follows the prefix: zeros.
  const OpenedTrace opened = openBytes(AbifBuilder().prefix(128).callOffsetsAfterPrefix().build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.a, risingFrom(100));
  EXPECT_EQ(opened.bases, "");
  EXPECT_FALSE(opened.usable);
}

TEST(AbifReader, ShortDataIsStillSoughtAtThePositionThatItsFieldNames) {
  // Four bases would fit into the field. It holds 0, the position of "ABIF".
  const OpenedTrace opened = openBytes(AbifBuilder().dataOffset("PBAS", 1, 0).build());
  EXPECT_EQ(opened.bases, "ABIF");

  // The bases in the field, 0x41434754, are a position past the end of the file.
  const OpenedTrace inField = openBytes(AbifBuilder().dataOffset("PBAS", 1, 0x41434754).build());
  EXPECT_TRUE(inField.read);
  EXPECT_EQ(inField.bases, "");
  EXPECT_EQ(inField.baseCount, 4u);
}

TEST(AbifReader, Data9To12WithoutPbas1GiveChannelsOnly) {
  // "PBAS" 2 is there.
  const OpenedTrace opened = openBytes(AbifBuilder().without("PBAS", 1).build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.t, risingFrom(400));
  EXPECT_EQ(opened.baseCount, 0u);
  EXPECT_FALSE(opened.usable);
  EXPECT_EQ(opened.peaks, Peaks{});
  EXPECT_EQ(opened.callerName, "");
}

TEST(AbifReader, APbas1CountOf0GivesChannelsOnly) {
  const OpenedTrace opened = openBytes(AbifBuilder().count("PBAS", 1, 0).build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.baseCount, 0u);
  EXPECT_EQ(opened.callerName, "");
}

TEST(AbifReader, OtherCountsOfQualitiesOrPeaksThanOfBasesFail) {
  for (const char* name : {"PCON", "PLOC"}) {
    for (const std::uint32_t count : {0u, 3u, 5u, 0xFFFFFFFFu}) {
      const OpenedTrace opened = openBytes(AbifBuilder().count(name, 1, count).build());

      EXPECT_FALSE(opened.read) << name << count;
      EXPECT_EQ(opened.status, 2) << name << count;
    }
  }
  EXPECT_FALSE(openBytes(AbifBuilder().without("PCON", 1).build()).read);
  EXPECT_FALSE(openBytes(AbifBuilder().without("PLOC", 1).build()).read);
}

TEST(AbifReader, APlocCountOneLessThanThePbasCountFails) {
  EXPECT_FALSE(openBytes(AbifBuilder().count("PLOC", 1, 3).build()).read);
}

TEST(AbifReader, AData9OfSize4OrLessIsIgnored) {
  EXPECT_FALSE(openBytes(AbifBuilder().dataSize("DATA", 9, 4).build()).read);
  EXPECT_FALSE(openBytes(AbifBuilder().dataSize("DATA", 9, 0).build()).read);
  EXPECT_TRUE(openBytes(AbifBuilder().dataSize("DATA", 9, 5).build()).read);
  EXPECT_TRUE(openBytes(AbifBuilder().dataSize("DATA", 9, 0xFFFFFFFF).build()).read);
  // An ignored entry does not replace an earlier one either.
  EXPECT_EQ(openBytes(AbifBuilder().entry("DATA", 9, "\0\7\0\7"s, 2).build()).g, risingFrom(300));
}

TEST(AbifReader, OtherNamesAndNumbersAreSkipped) {
  AbifBuilder builder;
  for (const std::uint32_t number : {1u, 8u, 13u, 0xFFFFFFFFu}) {
    builder.entry("DATA", number, std::string(24, 'x'), 2);
  }
  builder.entry("data", 9, std::string(24, 'x'), 2)
      .entry("FWO_", 2, "TTTT")
      .entry("PBAS", 3, "xxxxx")
      .entry("PBA2", 1, "xxxxx")
      .entry("SPAC", 1, "xxxxx")
      .entry("SPAC", 3, "xxxxx");

  const OpenedTrace opened = openBytes(builder.build());

  EXPECT_EQ(opened.g, risingFrom(300));
  EXPECT_EQ(opened.bases, "ACGT");
  EXPECT_EQ(opened.callerName, "built.bcp");
}

TEST(AbifReader, TheLastOccurrenceOfAnEntryWins) {
  AbifBuilder builder;
  builder.bases("ACGTA")
      .entry("PBAS", 1, "TTTTT")
      .entry("PCON", 1, bytes({21, 22, 23, 24, 25}))
      .entry("PLOC", 1, "\0\2\0\3\0\4\0\5\0\6"s, 2)
      .entry("SPAC", 2, "\5other")
      .entry("DATA", 9, bytes(std::vector<int>(24, 1)), 2)
      .entry("FWO_", 1, "CATG");

  const OpenedTrace opened = openBytes(builder.build());

  EXPECT_EQ(opened.bases, "TTTTT");
  EXPECT_EQ(opened.qualities, bytes({21, 22, 23, 24, 25}));
  EXPECT_EQ(opened.peaks, (Peaks{2, 3, 4, 5, 6, 12}));
  EXPECT_EQ(opened.callerName, "other");
  EXPECT_EQ(opened.c, Samples(12, 0x0101));  // "DATA" 9
  EXPECT_EQ(opened.g, risingFrom(200));      // "DATA" 12, made for C
}

TEST(AbifReader, OnlyTheChannelThatTheLastEntrysNumberNamesIsCompared) {
  struct Case {
    std::string what;
    AbifBuilder builder;
    bool read;
  };
  const AbifBuilder bare;  // the last entry is "SPAC" 2
  const auto with = [](AbifBuilder builder, std::uint32_t number) {
    return endingWith(builder, number);
  };
  const AbifBuilder shortA = AbifBuilder(bare).count("DATA", 10, 11);
  const AbifBuilder shortT = AbifBuilder(bare).count("DATA", 11, 11);
  const AbifBuilder shortC = AbifBuilder(bare).count("DATA", 12, 11);
  for (const Case& one : {
           Case{"number 2, DATA 10 differs", shortA, true},
           Case{"number 2, DATA 11 differs", shortT, false},
           Case{"number 2, DATA 12 differs", shortC, true},
           Case{"number 1, DATA 10 differs", with(shortA, 1), false},
           Case{"number 1, DATA 11 differs", with(shortT, 1), true},
           Case{"number 3, DATA 12 differs", with(shortC, 3), false},
           Case{"number 0, DATA 11 differs", with(shortT, 0), true},
           Case{"number 4, DATA 11 differs", with(shortT, 4), true},
           Case{"number 11, DATA 11 differs", with(shortT, 11), true},
           Case{"number 2^32 - 1, DATA 11 differs", with(shortT, 0xFFFFFFFF), true},
           Case{"DATA 12 last, DATA 12 differs", AbifBuilder(shortC).last("DATA", 12), false},
           Case{"DATA 12 last, DATA 11 differs", AbifBuilder(shortT).last("DATA", 12), true},
           Case{"DATA 11 last, DATA 11 differs", AbifBuilder(shortT).last("DATA", 11), false},
           Case{"DATA 9 last, DATA 11 differs", AbifBuilder(shortT).last("DATA", 9), true},
           Case{"an unused DATA 11 last, DATA 11 differs",
                AbifBuilder(shortT).entry("DATA", 11, "\0\1"s, 2), true},
       }) {
    const OpenedTrace opened = openBytes(one.builder.build());
    EXPECT_EQ(opened.read, one.read) << one.what;
    // All channels take the count of "DATA" 9.
    EXPECT_EQ(opened.c, one.read ? risingFrom(200) : Samples{}) << one.what;
  }
}

TEST(AbifReader, APointCountOf0Fails) {
  AbifBuilder builder;
  for (std::uint32_t number = 9; number <= 12; ++number) builder.count("DATA", number, 0);

  EXPECT_FALSE(openBytes(builder.build()).read);
}

TEST(AbifReader, AMissingChannelFails) {
  for (std::uint32_t number = 9; number <= 12; ++number) {
    AbifBuilder builder;
    builder.without("DATA", number);

    EXPECT_FALSE(openBytes(endingWith(builder, 700).build()).read) << number;
  }
}

TEST(AbifReader, TheCallerNameIsAsLongAsItsCountSaysWithoutTheLengthByte) {
  const auto callerName = [](std::uint32_t count) {
    return openBytes(AbifBuilder().count("SPAC", 2, count).build()).callerName;
  };
  EXPECT_EQ(callerName(2), "b");
  EXPECT_EQ(callerName(6), "built");
  EXPECT_EQ(openBytes(AbifBuilder().callerName("ab\0cd"s).build()).callerName, "ab\0cd"s);
}

TEST(AbifReader, ACallerNameCountOf0Or1OrMoreThan2147483648GivesAnEmptyName) {
  for (const std::uint32_t count : {0u, 1u, 0x80000001u, 0xFFFFFFFFu}) {
    const OpenedTrace opened = openBytes(AbifBuilder().count("SPAC", 2, count).build());

    EXPECT_TRUE(opened.read) << count;
    EXPECT_EQ(opened.callerName, "") << count;
    EXPECT_EQ(opened.bases, "ACGT") << count;
  }
}

TEST(AbifReader, WithoutSpac2TheCallerNameIsEmpty) {
  const OpenedTrace opened =
      openBytes(AbifBuilder().without("SPAC", 2).entry("SPAC", 1, "\5other").build());

  EXPECT_TRUE(opened.read);
  EXPECT_EQ(opened.callerName, "");
  EXPECT_EQ(opened.bases, "ACGT");
}

TEST(AbifReader, ACallerNameLongerThanTheFileEndsWithTheFile) {
  // The directory comes first, so the file ends with the ten bytes of the name.
  for (const std::uint32_t count : {11u, 1000u, 0x7FFFFFFFu, 0x80000000u}) {
    const std::string content = AbifBuilder().directoryFirst().count("SPAC", 2, count).build();

    EXPECT_EQ(openBytes(content).callerName, "built.bcp") << count;
  }
}

TEST(AbifReader, TheCallerNameIsReadAfterTheFilesLastByteWasRead) {
  // The file ends with the peaks; the name is before them.
  const OpenedTrace opened = openBytes(AbifBuilder().directoryFirst().last("PLOC", 1).build());

  EXPECT_EQ(opened.peaks, (Peaks{1, 4, 7, 10, 12}));
  EXPECT_EQ(opened.callerName, "built.bcp");
}

TEST(AbifReader, ADirectoryOfManyOtherEntriesIsWalkedWhole) {
  for (const bool first : {false, true}) {
    AbifBuilder builder;
    builder.otherEntries(150);
    if (first) builder.directoryFirst();

    const OpenedTrace opened = openBytes(builder.build());

    EXPECT_EQ(opened.a, risingFrom(100));
    EXPECT_EQ(opened.c, risingFrom(200));
    EXPECT_EQ(opened.g, risingFrom(300));
    EXPECT_EQ(opened.t, risingFrom(400));
    EXPECT_EQ(opened.bases, "ACGT");
    EXPECT_EQ(opened.peaks, (Peaks{1, 4, 7, 10, 12}));
    EXPECT_EQ(opened.callerName, "built.bcp");
  }
}

TEST(AbifReader, TheHeaderSaysHowFarApartTheEntriesStand) {
  for (const int stride : {24, 28, 29, 40, 1000}) {
    EXPECT_EQ(openBytes(AbifBuilder().stride(stride).build()).bases, "ACGT") << stride;
  }
  EXPECT_FALSE(openBytes(AbifBuilder().stride(40).headerStride(28).build()).read);
}

TEST(AbifReader, AMissingEntryOfTheHeadersCountIsNotRead) {
  // The last of twelve entries is the caller name.
  EXPECT_EQ(openBytes(AbifBuilder().headerEntryCount(12).build()).callerName, "built.bcp");
  EXPECT_EQ(openBytes(AbifBuilder().headerEntryCount(11).build()).callerName, "");
  EXPECT_FALSE(openBytes(AbifBuilder().headerEntryCount(0).build()).read);
  EXPECT_FALSE(openBytes(AbifBuilder().headerEntryCount(13).build()).read);
}

}  // namespace
