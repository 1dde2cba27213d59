#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

using namespace std::string_literals;

// Header fields, as bytes from the start of the file.
constexpr std::size_t samplesOffset = 8;
constexpr std::size_t commentsSize = 28;
constexpr std::size_t commentsOffset = 32;
constexpr std::size_t versionOffset = 36;

void expectBareTrace(const OpenedTrace& opened, const std::string& what) {
  EXPECT_TRUE(opened.read) << what;
  EXPECT_EQ(opened.status, 0) << what;
  EXPECT_EQ(opened.a, risingFrom(10)) << what;
  EXPECT_EQ(opened.c, risingFrom(20)) << what;
  EXPECT_EQ(opened.g, risingFrom(30)) << what;
  EXPECT_EQ(opened.t, risingFrom(40)) << what;
  EXPECT_EQ(opened.bases, "ACGT") << what;
  EXPECT_EQ(opened.qualities, bytes({11, 12, 13, 14})) << what;
  EXPECT_EQ(opened.peaks, (Peaks{1, 4, 7, 10, 12})) << what;
  EXPECT_EQ(opened.callerName, "built.scf") << what;
}

TEST(ScfReader, Version2And3GiveTheSameTraceInBothSampleSizes) {
  for (const char* version : {"2.00", "3.00"}) {
    for (const std::uint32_t sampleSize : {1u, 2u}) {
      expectBareTrace(openBytes(ScfBuilder().version(version).sampleSize(sampleSize).build()),
                      version + " of size "s + std::to_string(sampleSize));
    }
  }
}

TEST(ScfReader, AVersion2FileYieldsWhatTheEquivalentVersion3FileDoes) {
  const auto open = [](const char* version) {
    return openBytes(ScfBuilder()
                         .version(version)
                         .channel('A', {7, 0, 65535, 1, 300})
                         .channel('C', {0, 0, 1, 0, 0})
                         .channel('G', {65535, 65535, 0, 0, 1})
                         .channel('T', {1, 2, 4, 8, 16})
                         .bases("TNaG")
                         .peaks({4, 3, 2, 70000})
                         .probabilities('G', {0, 0, 0, 99})
                         .build());
  };
  const OpenedTrace two = open("2.00");
  const OpenedTrace three = open("3.00");

  EXPECT_EQ(two.a, (Samples{7, 0, 65535, 1, 300}));
  EXPECT_EQ(three.a, two.a);
  EXPECT_EQ(two.c, (Samples{0, 0, 1, 0, 0}));
  EXPECT_EQ(three.c, two.c);
  EXPECT_EQ(two.g, (Samples{65535, 65535, 0, 0, 1}));
  EXPECT_EQ(three.g, two.g);
  EXPECT_EQ(two.t, (Samples{1, 2, 4, 8, 16}));
  EXPECT_EQ(three.t, two.t);
  EXPECT_EQ(two.bases, "TNaG");
  EXPECT_EQ(three.bases, two.bases);
  EXPECT_EQ(two.qualities, three.qualities);
  EXPECT_EQ(two.peaks, (Peaks{4, 3, 2, 70000, 5}));  // the last is the number of samples
  EXPECT_EQ(three.peaks, two.peaks);
}

TEST(ScfReader, SecondDifferences100DecodeTo123) {
  const OpenedTrace opened =
      openBytes(ScfBuilder().version("3.00").storedSamples('A', {1, 0, 0}).build());

  EXPECT_EQ(opened.a, (Samples{1, 2, 3}));
}

TEST(ScfReader, SecondDifferencesOf16BitsAreSummedModulo65536) {
  // First sums 65535, 65534, 0; second sums 65535, 65533, 65533.
  const OpenedTrace opened = openBytes(ScfBuilder().storedSamples('G', {65535, 65535, 2}).build());

  EXPECT_EQ(opened.g, (Samples{65535, 65533, 65533}));
}

TEST(ScfReader, SecondDifferencesOf8BitsAreSummedModulo256AndWidened) {
  // First sums 200, 144, 145; second sums 200, 88, 233.
  const OpenedTrace opened =
      openBytes(ScfBuilder().sampleSize(1).storedSamples('T', {200, 200, 1}).build());

  EXPECT_EQ(opened.t, (Samples{200, 88, 233}));
}

TEST(ScfReader, SumsStartAfreshInEachChannel) {
  const OpenedTrace opened =
      openBytes(ScfBuilder().storedSamples('A', {5, 0}).storedSamples('C', {1, 0}).build());

  EXPECT_EQ(opened.a, (Samples{5, 10}));
  EXPECT_EQ(opened.c, (Samples{1, 2}));
  EXPECT_EQ(opened.g, (Samples{0, 0}));
}

TEST(ScfReader, LongTracesAreReadWholeInEveryLayout) {
  // More samples and bases than the reader takes at once.
  const std::size_t points = 30000;
  std::vector<int> samples(points);
  for (std::size_t i = 0; i < points; ++i) samples[i] = static_cast<int>(i * i % 251);
  const Samples expected(samples.begin(), samples.end());
  std::string bases(5000, 'N');
  std::vector<std::uint32_t> peaks(bases.size());
  std::vector<int> probabilities(bases.size());
  for (std::size_t i = 0; i < bases.size(); ++i) {
    bases[i] = "ACGT"[i * 7 % 4];
    peaks[i] = static_cast<std::uint32_t>(6 * i);
    probabilities[i] = static_cast<int>(10 + i % 90);
  }
  for (const char* version : {"2.00", "3.00"}) {
    for (const std::uint32_t sampleSize : {1u, 2u}) {
      ScfBuilder builder;
      builder.version(version).sampleSize(sampleSize).bases(bases).peaks(peaks);
      for (const char letter : "ACGT"s) {
        builder.channel(letter, samples).probabilities(letter, probabilities);
      }

      const OpenedTrace opened = openBytes(builder.build());

      for (const Samples* channel : {&opened.a, &opened.c, &opened.g, &opened.t}) {
        EXPECT_TRUE(*channel == expected) << version << sampleSize;
      }
      EXPECT_EQ(opened.bases, bases);
      EXPECT_EQ(opened.qualities, bytes(probabilities));
      EXPECT_EQ(opened.peaks[4999], 6 * 4999);
      EXPECT_EQ(opened.peaks[5000], 30000);
      EXPECT_EQ(opened.callerName, "built.scf");
    }
  }
}

TEST(ScfReader, TheSignOfTheFirstVersionCharacterDecidesTheLayout) {
  // The same bytes in the version 3 layout show second differences 1, 0 as samples 1, 2.
  struct Case {
    std::string version;
    bool isVersion3;
  };
  for (const Case& one :
       {Case{"3.00", true}, Case{"3.10", true}, Case{"4.00", true}, Case{"9.99", true},
        Case{"v3.0", true}, Case{"\x7F.00", true}, Case{"2.00", false}, Case{"2.99", false},
        Case{"1.00", false}, Case{"0.00", false}, Case{" 3.0", false}, Case{"\0\0\0\0"s, false},
        Case{"\x80.00", false}, Case{"\xFF.00", false}}) {
    ScfBuilder builder;
    builder.storedSamples('A', {1, 0}).storedSamples('C', {5, 9});

    std::string content = builder.version("3.00").build();
    content.replace(versionOffset, 4, one.version);
    const OpenedTrace opened = openBytes(content);

    // In the version 2 layout the stored 1, 0, 5, 9 are one sample of each channel.
    EXPECT_EQ(opened.a, one.isVersion3 ? (Samples{1, 2}) : (Samples{1, 0})) << one.version;
    EXPECT_EQ(opened.t, one.isVersion3 ? (Samples{0, 0}) : (Samples{9, 0})) << one.version;
  }
}

TEST(ScfReader, AnySampleSizeBut1Is16Bits) {
  for (const std::uint32_t size : {0u, 2u, 3u, 4u, 0x01000000u, 0x101u, 0xFFFFFFFFu}) {
    expectBareTrace(openBytes(ScfBuilder().sampleSize(size).build()), std::to_string(size));
  }
}

TEST(ScfReader, ABaseNHasNoQuality) {
  for (const char* version : {"2.00", "3.00"}) {
    const OpenedTrace opened = openBytes(ScfBuilder().version(version).bases("ANGT").build());

    // No quality is a zero, which ends the quality text.
    EXPECT_EQ(opened.bases, "ANGT") << version;
    EXPECT_EQ(opened.qualities, bytes({11})) << version;
  }
}

TEST(ScfReader, OtherLettersThanACGTHaveNoQuality) {
  for (const char* version : {"2.00", "3.00"}) {
    for (const char letter : "acgtnNRYB-*"s) {
      const OpenedTrace opened =
          openBytes(ScfBuilder().version(version).bases("T"s + letter + "T").build());

      EXPECT_EQ(opened.qualities, bytes({14})) << version << letter;
    }
  }
}

TEST(ScfReader, TheQualityIsTheProbabilityOfTheCalledBase) {
  for (const char* version : {"2.00", "3.00"}) {
    const OpenedTrace opened = openBytes(ScfBuilder()
                                             .version(version)
                                             .bases("TGCA")
                                             .probabilities('A', {1, 2, 3, 14})
                                             .probabilities('C', {5, 6, 17, 8})
                                             .probabilities('G', {9, 50, 11, 12})
                                             .probabilities('T', {255, 14, 15, 16})
                                             .build());

    EXPECT_EQ(opened.qualities, bytes({255, 50, 17, 14})) << version;
  }
}

TEST(ScfReader, PeaksOf2To31AndAboveAreNegative) {
  for (const char* version : {"2.00", "3.00"}) {
    const OpenedTrace opened = openBytes(
        ScfBuilder().version(version).peaks({0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0}).build());

    EXPECT_EQ(opened.peaks, (Peaks{2147483647, -2147483647 - 1, -1, 0, 12})) << version;
  }
}

TEST(ScfReader, NoBasesGiveChannelsOnly) {
  for (const char* version : {"2.00", "3.00"}) {
    const OpenedTrace opened = openBytes(ScfBuilder().version(version).bases("").build());

    EXPECT_TRUE(opened.read);
    EXPECT_EQ(opened.a, risingFrom(10));
    EXPECT_FALSE(opened.usable);
    EXPECT_EQ(opened.callerName, "built.scf");
  }
}

TEST(ScfReader, ASecondCommentLineThatBeginsWithBcalNamesTheCaller) {
  const OpenedTrace opened =
      openBytes(ScfBuilder().comments("NAME=sample\nBCAL=caller 1.2\nMACH=x\n").build());

  EXPECT_EQ(opened.callerName, "caller 1.2");
}

TEST(ScfReader, TheFirstLineThatBeginsWithBcalCounts) {
  struct Case {
    std::string comments;
    std::string name;
  };
  for (const Case& one :
       {Case{"BCAL=one\nBCAL=two\n", "one"}, Case{"xBCAL=one\n BCAL=two\nBCAL=three", "three"},
        Case{"BCAL=\nBCAL=two\n", ""}, Case{"bcal=one\nBCAL one\n", ""},
        Case{"BCAL=one\r\n", "one\r"}, Case{"BCAL=a\0b\n"s, "a\0b"s}, Case{"BCAL=one", "one"},
        Case{"\nBCAL=BCAL=one\n", "BCAL=one"}, Case{"\n\nBCAL=one\n", "one"},
        Case{"BCA\nBCAL=one\n", "one"}}) {
    EXPECT_EQ(openBytes(ScfBuilder().comments(one.comments).build()).callerName, one.name)
        << one.comments;
  }
}

TEST(ScfReader, CommentsWithoutABcalLineLeaveTheCallerNameEmpty) {
  for (const std::string& comments : {"NAME=sample\nMACH=x\n"s, ""s, "\0"s, "BCAL"s}) {
    const OpenedTrace opened = openBytes(ScfBuilder().comments(comments).build());

    EXPECT_EQ(opened.callerName, "") << comments;
    EXPECT_EQ(opened.bases, "ACGT") << comments;
  }
}

TEST(ScfReader, LineFeedsAreCountedUpToTheLineThatNamesTheCaller) {
  struct Case {
    std::string comments;
    std::int32_t lineCount;
  };
  for (const Case& one : {Case{"BCAL=one\nBCAL=two\n", 1},
                          Case{"\n\nNAME=x\nBCAL=one\nMACH=y\n", 4}, Case{"NAME=x\nBCAL=one", 1},
                          Case{"NAME=x\n\nMACH=y\n", 3}, Case{"BCA\nBCAL", 1}, Case{"", 0}}) {
    EXPECT_EQ(openBytes(ScfBuilder().comments(one.comments).build()).lineCount, one.lineCount)
        << one.comments;
  }
}

TEST(ScfReader, TheSearchForTheCallerStartsAtTheComments) {
  // The unused part of the header holds a line "BCAL=no".
  ScfBuilder builder;
  builder.header(44, 0x0A424341).header(48, 0x4C3D6E6F).header(52, 0x0A000000);

  EXPECT_EQ(openBytes(builder.build()).callerName, "built.scf");
  EXPECT_EQ(openBytes(builder.comments("NAME=sample\n").build()).callerName, "");
}

TEST(ScfReader, TheSearchForTheCallerContinuesAfterTheComments) {
  EXPECT_EQ(openBytes(ScfBuilder().header(commentsSize, 0).build()).callerName, "built.scf");
  // From the start of the file, the first line goes up to the first line feed of the comments.
  EXPECT_EQ(openBytes(ScfBuilder().header(commentsOffset, 0).build()).callerName, "built.scf");
}

TEST(ScfReader, TheCallerIsFoundAfterTheFilesLastByteWasRead) {
  // The file ends with the bases. The unused part of the header holds "BCAL=x".
  const OpenedTrace opened = openBytes(ScfBuilder()
                                           .version("2.00")
                                           .comments("")
                                           .header(44, 0x4243414C)
                                           .header(48, 0x3D780A00)
                                           .header(commentsOffset, 44)
                                           .build());

  EXPECT_EQ(opened.bases, "ACGT");
  EXPECT_EQ(opened.callerName, "x");
}

TEST(ScfReader, PartsStandWhereTheHeaderSays) {
  // The samples of a bare file are moved to its end; other bytes replace them.
  const std::string bare = ScfBuilder().build();
  const ScfBuilder layout;
  const std::size_t size = layout.basesOffset() - layout.samplesOffset();
  std::string content = ScfBuilder().header(samplesOffset, 0x1000).build();
  content.replace(128, size, size, '#');
  content.resize(0x1000, '\0');
  content += bare.substr(128, size);

  expectBareTrace(openBytes(content), "moved");
}

}  // namespace
