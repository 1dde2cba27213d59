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

// Header fields, as bytes from the start of the file.
constexpr std::size_t sampleCount = 4;
constexpr std::size_t samplesOffset = 8;
constexpr std::size_t sampleSizeField = 40;
constexpr std::size_t baseCount = 12;
constexpr std::size_t basesOffset = 24;
constexpr std::size_t commentsOffset = 32;
constexpr std::size_t versionOffset = 36;

TEST(ScfReaderLimits, AFailedMoveGoesOnFromWhereTheReaderStands) {
  // The reader's position is 44, after the header fields; then after the samples; then after the
  // bases.
  for (const char* version : {"2.00", "3.00"}) {
    ScfBuilder noSamples;
    noSamples.version(version).header(44, 0x00010002).header(samplesOffset, 0x80000000);
    EXPECT_EQ(openBytes(noSamples.build()).a[0], 1) << version;

    ScfBuilder noBases;
    noBases.version(version).header(basesOffset, 0x80000000);
    EXPECT_EQ(openBytes(noBases.build()).bases, "ACGT") << version;

    ScfBuilder noComments;
    noComments.version(version).comments("\nBCAL=x\n").header(commentsOffset, 0xFFFFFFFF);
    EXPECT_EQ(openBytes(noComments.build()).callerName, "x") << version;
  }
}

TEST(ScfReaderLimits, PartsPastTheEndOfTheFileAreZero) {
  for (const char* version : {"2.00", "3.00"}) {
    const OpenedTrace opened = openBytes(ScfBuilder()
                                             .version(version)
                                             .header(samplesOffset, 0x7FFFFFFF)
                                             .header(basesOffset, 0x7FFFFFFF)
                                             .header(commentsOffset, 0x7FFFFFFF)
                                             .build());

    EXPECT_TRUE(opened.read) << version;
    EXPECT_EQ(opened.a, Samples(12, 0)) << version;
    EXPECT_EQ(opened.baseCount, 4u) << version;
    EXPECT_EQ(opened.bases, "") << version;
    EXPECT_EQ(opened.peaks, (Peaks{0, 0, 0, 0, 12})) << version;
    EXPECT_EQ(opened.callerName, "") << version;
  }
}

TEST(ScfReaderLimits, WhatTheFileDoesNotHoldIsZeroBeforeTheSums) {
  // T is the last channel, cut in its fourth value. Missing second differences are 0, so it
  // continues with slope 1. If missing samples were 0, it would end 3, 0, 0.
  ScfBuilder builder;
  builder.storedSamples('T', {1, 0, 0, 5, 5});
  const std::size_t cut = builder.samplesOffset() + (3 * 5 + 3) * 2 + 1;

  EXPECT_EQ(openBytes(builder.build()).t, (Samples{1, 2, 3, 9, 20}));
  EXPECT_EQ(openBytes(builder.truncatedTo(cut).build()).t, (Samples{1, 2, 3, 4, 5}));

  ScfBuilder narrow;
  narrow.sampleSize(1).storedSamples('T', {1, 0, 0, 5, 5});
  const std::size_t narrowCut = narrow.samplesOffset() + 3 * 5 + 3;
  EXPECT_EQ(openBytes(narrow.truncatedTo(narrowCut).build()).t, (Samples{1, 2, 3, 4, 5}));
}

/// A plain reader of the format: the values in the first `held` bytes of a file. A value that is
/// not whole is zero.
class PlainScf {
 public:
  PlainScf(const std::string& content, std::size_t held) : content_(content), held_(held) {
    version3_ =
        static_cast<signed char>(held >= versionOffset + 1 ? content[versionOffset] : 0) > '2';
    wide_ = number(40, 4) != 1;
  }
  std::uint32_t number(std::size_t at, std::size_t size) const {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = value << 8 | static_cast<unsigned char>(at + size <= held_ ? content_[at + i] : '\0');
    }
    return value;
  }
  std::size_t points() const { return number(4, 4); }
  std::size_t bases() const { return number(12, 4); }
  Samples channel(std::size_t index) const {
    const std::size_t size = wide_ ? 2 : 1;
    Samples samples;
    std::uint32_t slope = 0, sum = 0;
    for (std::size_t i = 0; i < points(); ++i) {
      const std::size_t place = version3_ ? index * points() + i : 4 * i + index;
      const std::uint32_t stored = number(number(8, 4) + place * size, size);
      slope += stored;
      sum += slope;
      samples.push_back(
          static_cast<std::uint16_t>(version3_ ? sum % (wide_ ? 65536u : 256u) : stored));
    }
    return samples;
  }
  Peaks peaks() const {
    Peaks peaks;
    for (std::size_t i = 0; i < bases(); ++i) {
      peaks.push_back(static_cast<std::int32_t>(number(start() + i * (version3_ ? 4 : 12), 4)));
    }
    if (bases() > 0) peaks.push_back(static_cast<std::int32_t>(points()));
    return peaks;
  }
  std::string letters() const {
    std::string text;
    for (std::size_t i = 0; i < bases(); ++i) text += letter(i);
    return text.c_str();  // up to the first zero
  }
  std::string qualities() const {
    std::string text;
    bool usable = false;
    for (std::size_t i = 0; i < bases(); ++i) {
      const std::size_t channel = "ACGT"s.find(letter(i));
      const std::size_t place = version3_ ? (4 + channel) * bases() + i : 12 * i + 4 + channel;
      text += static_cast<char>(channel == std::string::npos ? 0 : number(start() + place, 1));
      usable = usable || static_cast<signed char>(text.back()) > 9;
    }
    return usable ? text.c_str() : "";
  }

 private:
  std::size_t start() const { return number(24, 4); }
  char letter(std::size_t i) const {
    return static_cast<char>(number(start() + (version3_ ? 8 * bases() + i : 12 * i + 8), 1));
  }

  const std::string& content_;
  std::size_t held_;
  bool version3_ = false;
  bool wide_ = true;
};

TEST(ScfReaderLimits, AFileCutAnywhereGivesWhatItHoldsAndZeros) {
  const ScratchFolder folder;
  for (const char* version : {"2.00", "3.00"}) {
    for (const std::uint32_t sampleSize : {1u, 2u}) {
      ScfBuilder builder;
      builder.version(version)
          .sampleSize(sampleSize)
          .channel('A', {0x0301, 0x0104, 0x0105, 0x0902, 0x0603})
          .channel('T', {0x0203, 0x0805, 0x0907, 0x0903, 0x0203})
          .peaks({0x01020304, 0x05060708, 0x090A0B0C, 0x0D0E0F10})
          .probabilities('A', {0x41, 0x43, 0x47, 0x54})
          .bases("AAGT");
      const std::string whole = builder.build();
      for (std::size_t size = 4; size <= whole.size(); ++size) {
        const OpenedTrace opened = openBytes(folder, whole.substr(0, size));
        const PlainScf plain(whole, size);
        SCOPED_TRACE(version + " of "s + std::to_string(sampleSize) + " cut at " +
                     std::to_string(size));

        ASSERT_TRUE(opened.read);
        EXPECT_EQ(opened.a, plain.channel(0));
        EXPECT_EQ(opened.c, plain.channel(1));
        EXPECT_EQ(opened.g, plain.channel(2));
        EXPECT_EQ(opened.t, plain.channel(3));
        EXPECT_EQ(opened.bases, plain.letters());
        EXPECT_EQ(opened.qualities, plain.qualities());
        EXPECT_EQ(opened.peaks, plain.peaks());
        EXPECT_TRUE("built.scf"s.starts_with(opened.callerName));
      }
      EXPECT_FALSE(openBytes(folder, whole.substr(0, 3)).read);
    }
  }
}

TEST(ScfReaderLimits, TheFirstCharacterOfTheVersionDecidesWhereTheFileHoldsIt) {
  // The samples start at byte 4 of the header: 0, 2, 0, 4 and 0, 4, 0, 0 in the version 2 layout.
  // In the version 3 layout A is 0, 2 and C is 0, 4.
  const std::string content =
      ScfBuilder().version("3.00").header(sampleCount, 2).header(samplesOffset, 4).build();

  const OpenedTrace without = openBytes(content.substr(0, 36));
  EXPECT_EQ(without.a, (Samples{0, 0}));
  EXPECT_EQ(without.c, (Samples{2, 4}));
  EXPECT_EQ(without.t, (Samples{4, 0}));
  for (const std::size_t size : std::initializer_list<std::size_t>{37, 38, 39}) {
    const OpenedTrace opened = openBytes(content.substr(0, size));
    EXPECT_EQ(opened.a, (Samples{0, 2})) << size;
    EXPECT_EQ(opened.c, (Samples{0, 4})) << size;
  }
}

TEST(ScfReaderLimits, AnIncompleteSampleSizeStaysUnread) {
  // The samples offset is no position: reading goes on after the last complete header field.
  const std::string content = ScfBuilder()
                                  .header(sampleCount, 1)
                                  .header(samplesOffset, 0x80000000)
                                  .header(sampleSizeField, 0x01020304)
                                  .build();

  for (const std::size_t size : std::initializer_list<std::size_t>{42, 43}) {
    const OpenedTrace opened = openBytes(content.substr(0, size));
    EXPECT_EQ(opened.a, (Samples{0x0102})) << size;
    EXPECT_EQ(opened.c, (Samples{0})) << size;
  }
  // A whole one is read, and the samples start after it.
  const OpenedTrace whole = openBytes(content.substr(0, 44) + "\5\6");
  EXPECT_EQ(whole.a, (Samples{0x0506}));
}

TEST(ScfReaderLimits, ALargeClaimThatTheFileDoesNotHoldFails) {
  for (const char* version : {"2.00", "3.00"}) {
    for (const std::uint32_t count : {claimLimit + 1, 0x80000000u, 0xFFFFFFFFu}) {
      for (const std::size_t field : {sampleCount, baseCount}) {
        const OpenedTrace opened =
            openBytes(ScfBuilder().version(version).header(field, count).build());

        EXPECT_FALSE(opened.read) << version << count;
        EXPECT_EQ(opened.status, 2) << version << count;
      }
    }
  }
}

TEST(ScfReaderLimits, AnUnmetClaimUpToTheLimitIsFilledWithZeros) {
  for (const char* version : {"2.00", "3.00"}) {
    const OpenedTrace points = openBytes(ScfBuilder()
                                             .version(version)
                                             .storedSamples('A', {})
                                             .comments("")
                                             .bases("")
                                             .header(sampleCount, claimLimit)
                                             .build());
    ASSERT_TRUE(points.read) << version;
    EXPECT_EQ(points.pointCount, claimLimit) << version;
    EXPECT_TRUE(points.a == Samples(claimLimit, 0)) << version;
    EXPECT_TRUE(points.t == Samples(claimLimit, 0)) << version;

    const OpenedTrace calls =
        openBytes(ScfBuilder().version(version).header(baseCount, claimLimit).build());
    ASSERT_TRUE(calls.read) << version;
    EXPECT_EQ(calls.peaks.size(), claimLimit + 1u) << version;
    EXPECT_EQ(calls.peaks[0], 1) << version;
    EXPECT_EQ(calls.peaks[claimLimit - 1], 0) << version;
    EXPECT_EQ(calls.peaks[claimLimit], 12) << version;
  }
}

TEST(ScfReaderLimits, AClaimThatTheFileHoldsIsReadHoweverLarge) {
  const std::uint32_t count = claimLimit + 1;
  struct Case {
    const char* version;
    std::uint32_t sampleSize;
    std::size_t field;
    std::size_t offsetField;
    std::uintmax_t bytesEach;
  };
  for (const Case& one :
       {Case{"2.00", 1, sampleCount, samplesOffset, 4},
        Case{"3.00", 1, sampleCount, samplesOffset, 4},
        Case{"3.00", 2, sampleCount, samplesOffset, 8}, Case{"2.00", 1, baseCount, basesOffset, 12},
        Case{"3.00", 1, baseCount, basesOffset, 9}}) {
    const std::string content = ScfBuilder()
                                    .version(one.version)
                                    .sampleSize(one.sampleSize)
                                    .header(one.field, count)
                                    .header(one.offsetField, 128)
                                    .build();
    const std::uintmax_t size = 128 + one.bytesEach * count;

    EXPECT_TRUE(openBytesOfSize(content, size).read) << one.version << one.bytesEach;
    EXPECT_EQ(openBytesOfSize(content, size - 1).status, 2) << one.version << one.bytesEach;
  }
}

TEST(ScfReaderLimits, ALargeClaimAfterAFailedMoveCountsFromWhereTheReaderStands) {
  const std::uint32_t count = claimLimit + 1;
  const std::string samples = ScfBuilder()
                                  .sampleSize(1)
                                  .header(sampleCount, count)
                                  .header(samplesOffset, 0x80000000)
                                  .build();
  EXPECT_TRUE(openBytesOfSize(samples, 44 + 4 * std::uintmax_t{count}).read);
  EXPECT_FALSE(openBytesOfSize(samples, 43 + 4 * std::uintmax_t{count}).read);

  const std::string calls =
      ScfBuilder().header(baseCount, count).header(basesOffset, 0x80000000).build();
  const std::uintmax_t samplesEnd = ScfBuilder().basesOffset();
  EXPECT_TRUE(openBytesOfSize(calls, samplesEnd + 9 * std::uintmax_t{count}).read);
  EXPECT_FALSE(openBytesOfSize(calls, samplesEnd + 9 * std::uintmax_t{count} - 1).read);
}

}  // namespace
