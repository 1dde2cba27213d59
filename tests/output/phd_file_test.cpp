#include "output/phd_file.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "output/file_writer.h"
#include "tests/support/scratch_folder.h"

namespace {

using Tessaly::FileWriter;
using Tessaly::String;
using namespace std::string_view_literals;

/// The fields of a record that tests change. The defaults make a small valid one.
struct Sample {
  const char* callerName = "KB.bcp";
  std::uint32_t pointCount = 100;
  const char* bases = "A";
  std::vector<int> qualities{20};
  std::vector<std::int32_t> peaks{13, 100};
};

std::string phdFile(const Sample& sample) {
  const String sampleName("s1"), callerName(sample.callerName), timeText("NOW"),
      bases(sample.bases);
  String qualities;
  for (const int quality : sample.qualities) qualities.append(static_cast<char>(quality));

  ScratchFolder folder;
  FileWriter writer;
  Quillet::writePhdFile(writer, "s1.phd.1",
                        {sampleName, callerName, timeText, sample.pointCount, bases, qualities,
                         sample.peaks.empty() ? nullptr : sample.peaks.data()});
  return folder.read("s1.phd.1");
}

bool has(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

/// The text from BEGIN_DNA on.
std::string dnaOf(const std::string& text) { return text.substr(text.find("BEGIN_DNA\n")); }

TEST(PhdFile, ARecordIsWrittenWhole) {
  ScratchFolder folder;  // given
  const String name("plate7_A01"), caller("KB.bcp"), time("Tue Mar  3 14:05:09 2020");
  const String bases("ACGT"), qualities("\x14\x1E\x09\x3E");  // 20 30 9 62
  const std::int32_t peaks[] = {13, 25, 1037, 12048, 12100};

  FileWriter writer;  // when
  Quillet::writePhdFile(writer, folder.at("plate7_A01.phd.1"),
                        {name, caller, time, 12100, bases, qualities, peaks});

  EXPECT_EQ(folder.read("plate7_A01.phd.1"),  // then
            R"(BEGIN_SEQUENCE plate7_A01

BEGIN_COMMENT
CHROMAT_FILE: plate7_A01
ABI_THUMBPRINT: 0
PHRED_VERSION: quillet
CALL_METHOD: KB.bcp
QUALITY_LEVELS: 99
TIME: Tue Mar  3 14:05:09 2020
TRACE_ARRAY_MIN_INDEX: 0
TRACE_ARRAY_MAX_INDEX: 12099
CHEM: term
DYE: big
END_COMMENT

BEGIN_DNA
A 20 13
C 30 25
G 9 1037
T 62 12048
END_DNA
END_SEQUENCE
)");
}

TEST(PhdFile, AnEmptyCallerNameLeavesATrailingBlank) {
  EXPECT_TRUE(
      has(phdFile({.callerName = ""}), "PHRED_VERSION: quillet\nCALL_METHOD: \nQUALITY_LEVELS"));
}

TEST(PhdFile, ZeroBytesInTheBasesAndInTheCallerNameAreWritten) {
  ScratchFolder folder;
  const String text("t"), empty;
  String callerName, bases;
  callerName.append("K\0B", 3);
  bases.append("A\0C", 3);
  const std::int32_t peaks[] = {5, 6, 7, 8};
  FileWriter writer;

  Quillet::writePhdFile(writer, folder.at("out.phd.1"),
                        {text, callerName, text, 8, bases, empty, peaks});

  const std::string content = folder.read("out.phd.1");
  EXPECT_TRUE(has(content, "\nCALL_METHOD: K\0B\nQUALITY_LEVELS"sv));
  EXPECT_EQ(dnaOf(content), "BEGIN_DNA\nA 0 5\n\0 0 6\nC 0 7\nEND_DNA\nEND_SEQUENCE\n"sv);
}

TEST(PhdFile, WithoutBasesTheEndFollowsTheBeginning) {
  const std::string text = phdFile({.bases = "", .qualities = {}, .peaks = {}});

  EXPECT_EQ(dnaOf(text), "BEGIN_DNA\nEND_DNA\nEND_SEQUENCE\n");
}

TEST(PhdFile, TheMaximumIndexIsTheSignedPointCountLessOne) {
  struct Case {
    std::uint32_t pointCount;
    const char* line;
  };
  const Case cases[] = {
      {0, "\nTRACE_ARRAY_MAX_INDEX: -1\n"},
      {1, "\nTRACE_ARRAY_MAX_INDEX: 0\n"},
      {0x80000000u, "\nTRACE_ARRAY_MAX_INDEX: 2147483647\n"},
      {0x80000001u, "\nTRACE_ARRAY_MAX_INDEX: -2147483648\n"},
      {0xFFFFFFFFu, "\nTRACE_ARRAY_MAX_INDEX: -2\n"},
  };

  for (const Case& row : cases) {
    EXPECT_TRUE(has(phdFile({.pointCount = row.pointCount}), row.line)) << row.line;
  }
}

TEST(PhdFile, LowerCaseAndAmbiguityLettersAreWrittenUnchanged) {
  const std::string text =
      phdFile({.bases = "acNRy-", .qualities = {1, 2, 3, 4, 5, 6}, .peaks = {1, 2, 3, 4, 5, 6, 7}});

  EXPECT_EQ(dnaOf(text),
            "BEGIN_DNA\na 1 1\nc 2 2\nN 3 3\nR 4 4\ny 5 5\n- 6 6\nEND_DNA\nEND_SEQUENCE\n");
}

TEST(PhdFile, AQualityByteFrom128OnIsWrittenAsANegativeNumber) {
  const std::string text =
      phdFile({.bases = "ACGT", .qualities = {127, 128, 200, 255}, .peaks = {1, 2, 3, 4, 5}});

  EXPECT_EQ(dnaOf(text), "BEGIN_DNA\nA 127 1\nC -128 2\nG -56 3\nT -1 4\nEND_DNA\nEND_SEQUENCE\n");
}

TEST(PhdFile, BasesBeyondTheEndOfTheQualitiesHaveQualityZero) {
  const std::string text = phdFile({.bases = "ACG", .qualities = {20}, .peaks = {1, 2, 3, 4}});

  EXPECT_EQ(dnaOf(text), "BEGIN_DNA\nA 20 1\nC 0 2\nG 0 3\nEND_DNA\nEND_SEQUENCE\n");
}

TEST(PhdFile, QualitiesBeyondTheLastBaseAreLeftOut) {
  const std::string text = phdFile({.bases = "A", .qualities = {20, 30, 40}, .peaks = {1, 2}});

  EXPECT_EQ(dnaOf(text), "BEGIN_DNA\nA 20 1\nEND_DNA\nEND_SEQUENCE\n");
}

TEST(PhdFile, APeakIndexBeyondTheSignedRangeIsNegative) {
  const std::string text = phdFile({.peaks = {static_cast<std::int32_t>(0x80000000u), 100}});

  EXPECT_EQ(dnaOf(text), "BEGIN_DNA\nA 20 -2147483648\nEND_DNA\nEND_SEQUENCE\n");
}

TEST(PhdFile, ALongRecordCrossesManyBuffersWithoutLoss) {
  const std::string bases(2000, 'G');  // given: lines of different lengths
  std::vector<std::int32_t> peaks(2001);
  std::string expected = "BEGIN_DNA\n";
  for (std::size_t i = 0; i < bases.size(); ++i) {
    peaks[i] = static_cast<std::int32_t>(i * i);
    expected += "G " + std::to_string(i % 99) + " " + std::to_string(i * i) + "\n";
  }
  std::vector<int> qualities(2000);
  for (std::size_t i = 0; i < qualities.size(); ++i) qualities[i] = static_cast<int>(i % 99);

  const std::string text =  // when
      phdFile({.bases = bases.c_str(), .qualities = qualities, .peaks = peaks});

  EXPECT_EQ(dnaOf(text), expected + "END_DNA\nEND_SEQUENCE\n");  // then
}

TEST(PhdFile, AnExistingFileIsReplacedAndTheWriterIsFreeForTheNext) {
  ScratchFolder folder;
  folder.write("out.phd.1", std::string(5000, 'x'));
  const String text("t"), empty;
  const std::int32_t peaks[] = {5, 6};
  FileWriter writer;

  Quillet::writePhdFile(writer, folder.at("out.phd.1"), {text, text, text, 6, empty, empty, peaks});

  const std::string content = folder.read("out.phd.1");
  EXPECT_EQ(content.substr(0, 17), "BEGIN_SEQUENCE t\n");
  EXPECT_EQ(dnaOf(content), "BEGIN_DNA\nEND_DNA\nEND_SEQUENCE\n");
  EXPECT_TRUE(writer.open("next"));
}

TEST(PhdFile, AFileThatCanNotBeMadeShowsOnlyInTheWritersNextOpen) {
  ScratchFolder folder;
  const String text("t");
  const std::int32_t peaks[] = {5, 6};
  FileWriter writer;

  Quillet::writePhdFile(writer, folder.at("missing/out.phd.1"),
                        {text, text, text, 6, text, text, peaks});

  EXPECT_FALSE(folder.has("missing"));
  EXPECT_FALSE(writer.open("next"));
}

}  // namespace
