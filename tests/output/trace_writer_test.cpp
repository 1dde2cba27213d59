#include "output/trace_writer.h"

#include <bit>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/output/written_bytes.h"
#include "tests/support/scratch_folder.h"

namespace {

using Quillet::TraceWriter;
using Tessaly::String;

/// The whole header with these four bytes of the sample count.
std::string header(std::initializer_list<int> sampleCount) {
  return ".scf" + bytes(sampleCount) + bytes({0, 0, 0, 128}) + std::string(24, '\0') + "2.00" +
         bytes({0, 0, 0, 2}) + std::string(84, '\0');
}

/// The two bytes of a sample in the byte order of this host.
std::string hostBytes(int high, int low) {
  return std::endian::native == std::endian::big ? bytes({high, low}) : bytes({low, high});
}

constexpr std::int16_t noSamples[] = {0};
constexpr const std::int16_t* emptyChannels[] = {noSamples, noSamples, noSamples, noSamples};

TEST(TraceWriter, WithoutSamplesTheFileIsOnlyTheHeader) {
  ScratchFolder folder;
  String name("abc");

  TraceWriter().writeTrace(name, emptyChannels, 0);

  EXPECT_EQ(folder.read("abc.scf"), header({0, 0, 0, 0}));
  EXPECT_EQ(folder.read("abc.scf").size(), 128u);
}

TEST(TraceWriter, SamplesKeepTheByteOrderOfTheHost) {
  ScratchFolder folder;
  const std::int16_t one[] = {1}, two[] = {2}, three[] = {3}, four[] = {4};
  const std::int16_t* const channels[] = {one, two, three, four};
  String name("abc");

  TraceWriter().writeTrace(name, channels, 1);

  const std::string samples = std::endian::native == std::endian::little
                                  ? bytes({1, 0, 2, 0, 3, 0, 4, 0})
                                  : bytes({0, 1, 0, 2, 0, 3, 0, 4});
  EXPECT_EQ(folder.read("abc.scf"), header({0, 0, 0, 1}) + samples);
}

TEST(TraceWriter, TheChannelsAreInterleavedSampleBySample) {
  ScratchFolder folder;
  const std::int16_t first[] = {0x0102, 0x0304};
  const std::int16_t second[] = {0x1112, 0x1314};
  const std::int16_t third[] = {0x2122, 0x2324};
  const std::int16_t fourth[] = {-1, -2};
  const std::int16_t* const channels[] = {first, second, third, fourth};
  String name("abc");

  TraceWriter().writeTrace(name, channels, 2);

  EXPECT_EQ(folder.read("abc.scf"),
            header({0, 0, 0, 2}) + hostBytes(0x01, 0x02) + hostBytes(0x11, 0x12) +
                hostBytes(0x21, 0x22) + hostBytes(0xFF, 0xFF) + hostBytes(0x03, 0x04) +
                hostBytes(0x13, 0x14) + hostBytes(0x23, 0x24) + hostBytes(0xFF, 0xFE));
}

TEST(TraceWriter, TheCallersNameKeepsTheSuffix) {
  ScratchFolder folder;
  String name("abc");
  TraceWriter writer;

  writer.writeTrace(name, emptyChannels, 0);
  EXPECT_EQ(std::string(name.text()), "abc.scf");
  EXPECT_TRUE(folder.has("abc.scf"));

  writer.writeTrace(name, emptyChannels, 0);
  EXPECT_EQ(std::string(name.text()), "abc.scf.scf");
  EXPECT_TRUE(folder.has("abc.scf.scf"));
}

TEST(TraceWriter, ManySamplesCrossTheBufferAndTheCountIsBigEndian) {
  ScratchFolder folder;
  constexpr std::int32_t count = 0x010203;  // 66051
  const std::vector<std::int16_t> samples(count, 0x0506);
  const std::int16_t* const channels[] = {samples.data(), samples.data(), samples.data(),
                                          samples.data()};
  String name("abc");

  TraceWriter().writeTrace(name, channels, count);

  std::string expected = header({0, 1, 2, 3});
  for (int i = 0; i < 4 * count; ++i) expected += hostBytes(5, 6);
  EXPECT_TRUE(folder.read("abc.scf") == expected);
}

TEST(TraceWriter, ASecondTraceCarriesItsOwnCount) {
  ScratchFolder folder;
  const std::int16_t zeros[] = {0, 0, 0};
  const std::int16_t* const channels[] = {zeros, zeros, zeros, zeros};
  TraceWriter writer;
  String first("first"), second("second");

  writer.writeTrace(first, channels, 3);
  writer.writeTrace(second, channels, 1);

  EXPECT_EQ(folder.read("first.scf"), header({0, 0, 0, 3}) + std::string(24, '\0'));
  EXPECT_EQ(folder.read("second.scf"), header({0, 0, 0, 1}) + std::string(8, '\0'));
}

TEST(TraceWriter, ANegativeCountGoesIntoTheHeaderAndNoSamplesFollow) {
  ScratchFolder folder;
  String name("abc");

  TraceWriter().writeTrace(name, emptyChannels, -2);

  EXPECT_EQ(folder.read("abc.scf"), header({0xFF, 0xFF, 0xFF, 0xFE}));
}

TEST(TraceWriter, AFileThatCanNotBeMadeIsSkippedInSilence) {
  ScratchFolder folder;
  String name("missing/abc");

  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  TraceWriter().writeTrace(name, emptyChannels, 0);

  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(folder.has("missing"));
  EXPECT_EQ(std::string(name.text()), "missing/abc.scf");
}

TEST(TraceWriter, AfterOneFailureEveryLaterFileIsMadeAndStaysEmpty) {
  ScratchFolder folder;
  folder.write("old.scf", "former");
  String missing("missing/abc"), old("old"), fresh("fresh");
  TraceWriter writer;

  writer.writeTrace(missing, emptyChannels, 0);
  writer.writeTrace(old, emptyChannels, 0);
  writer.writeTrace(fresh, emptyChannels, 0);

  EXPECT_EQ(folder.read("old.scf"), "");
  EXPECT_TRUE(folder.has("fresh.scf"));
  EXPECT_EQ(folder.read("fresh.scf"), "");
}

TEST(TraceWriter, AnExistingFileIsReplaced) {
  ScratchFolder folder;
  folder.write("abc.scf", std::string(1000, 'x'));
  String name("abc");

  TraceWriter().writeTrace(name, emptyChannels, 0);

  EXPECT_EQ(folder.read("abc.scf"), header({0, 0, 0, 0}));
}

TEST(TraceWriter, TheBufferHoldsTheDefault1024Bytes) {
  ScratchFolder folder;
  for (const std::int32_t length : {1023, 1024}) {
    TraceWriter trace;
    Tessaly::FileWriter& writer = trace;
    ASSERT_TRUE(writer.open(length == 1023 ? "pending" : "flushed"));
    writer.write(String('a', length));
  }

  EXPECT_EQ(folder.read("pending"), "");
  EXPECT_EQ(folder.read("flushed"), std::string(1024, 'a'));
}

TEST(TraceWriter, IsAFileWriter) {
  ScratchFolder folder;
  TraceWriter trace;
  Tessaly::FileWriter& writer = trace;

  ASSERT_TRUE(writer.open("plain"));
  writer.writeLine(12);
  writer.close();

  EXPECT_EQ(folder.read("plain"), "12\n");
}

}  // namespace
