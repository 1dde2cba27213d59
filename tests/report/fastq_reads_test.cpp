#include "report/fastq_reads.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/report/made_rows.h"

namespace {

using Quillet::SampleState;

/// The read of a row with these calls.
std::optional<Quillet::Read> readOf(const Quillet::SampleRow& row,
                                    const Quillet::TraceContent& content, bool trim = false) {
  return Quillet::readOf({row, &content, nullptr}, trim);
}

Quillet::SampleRow trimmedRow(std::uint32_t start, std::uint32_t end) {
  Quillet::SampleRow row = rowOf("s", SampleState::converted);
  row.figures = Quillet::CallFigures{};
  row.figures->trimStart = start;
  row.figures->trimEnd = end;
  return row;
}

}  // namespace

TEST(FastqReads, HoldTheCallsAsStored) {
  const auto read = readOf(rowOf("s", SampleState::converted), contentOf("ACgt", {0, 10, 40, 93}));

  ASSERT_TRUE(read);
  EXPECT_EQ(Quillet::fastqRecord(*read), "@s\nACgt\n+\n!+I~\n");
  EXPECT_EQ(Quillet::fastaRecord(*read), ">s\nACgt\n");
}

TEST(FastqReads, KeepLettersStarDashAndDotAndCallTheRestN) {
  std::string bases;
  std::string expected;
  for (int byte = 0; byte < 256; ++byte) {
    const char base = static_cast<char>(byte);
    const bool isKept = (base >= 'A' && base <= 'Z') || (base >= 'a' && base <= 'z') ||
                        std::string("*-.").find(base) != std::string::npos;
    bases += base;
    expected += isKept ? base : 'N';
  }

  const auto read = readOf(rowOf("s", SampleState::converted),
                           contentOf(bases, std::vector<std::uint8_t>(256, 20)));

  ASSERT_TRUE(read);
  EXPECT_EQ(read->bases, expected);
}

TEST(FastqReads, LimitQualities) {
  const auto read =
      readOf(rowOf("s", SampleState::converted), contentOf("ACGTA", {92, 94, 127, 128, 255}));

  ASSERT_TRUE(read);
  EXPECT_EQ(read->qualities, "}~~!!");
}

TEST(FastqReads, PutUnderscoresForBlanksAndControlCharactersInTheId) {
  const auto read = readOf(rowOf("a b\tc\nd\x7F"
                                 "e'\"\\\xC3\xA9",
                                 SampleState::converted),
                           contentOf("A", {10}));

  ASSERT_TRUE(read);
  EXPECT_EQ(read->id, "a_b_c_d_e'\"\\\xC3\xA9");
}

TEST(FastqReads, AreThereWhateverTheResultIs) {
  for (const SampleState state : Quillet::sampleStates) {
    EXPECT_EQ(readOf(rowOf("s", state), contentOf("A", {10})).has_value(),
              state != SampleState::hidden)
        << textOf(state);
  }
}

TEST(FastqReads, NeedATraceWithCallsAndQualities) {
  const Quillet::SampleRow row = rowOf("s", SampleState::refused);

  EXPECT_FALSE(Quillet::readOf({row, nullptr, nullptr}, false));
  EXPECT_FALSE(readOf(row, contentOf("", {})));
  EXPECT_FALSE(readOf(row, contentOf("ACGT", {0, 9, 128, 255})));
  EXPECT_TRUE(readOf(row, contentOf("ACGT", {0, 9, 127, 255})));
}

TEST(FastqReads, AreCutToTheTrimRange) {
  const auto content = contentOf("ACGTN", {10, 20, 30, 40, 50});

  const auto read = readOf(trimmedRow(1, 4), content, true);

  ASSERT_TRUE(read);
  EXPECT_EQ(read->bases, "CGT");
  EXPECT_EQ(read->qualities, "5?I");
}

TEST(FastqReads, AreLeftOutWhenTheTrimLeavesNothing) {
  const auto content = contentOf("ACGTN", {10, 20, 30, 40, 50});

  EXPECT_FALSE(readOf(trimmedRow(0, 0), content, true));
  EXPECT_TRUE(readOf(trimmedRow(0, 0), content, false));
}
