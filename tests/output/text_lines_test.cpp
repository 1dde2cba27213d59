#include "output/text_lines.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "output/file_writer.h"
#include "tests/support/scratch_folder.h"

namespace {

constexpr std::size_t longestLine = 2 + Quillet::longestDecimal;

/// A file of `count` lines, each a letter and the line's number times `factor`.
std::string written(std::int32_t count, std::int32_t factor) {
  ScratchFolder folder;
  Tessaly::FileWriter writer;
  writer.open("out");
  Quillet::writeLines<longestLine>(writer, count,
                                   [&](char* text, std::int32_t begin, std::int32_t end) {
                                     EXPECT_LE(end - begin, Quillet::blockOfLines);
                                     for (std::int32_t i = begin; i < end; ++i) {
                                       text = Quillet::putWord(text, i % 2 == 0 ? 'A' : 'b');
                                       text = Quillet::putShortLine(text, i * factor);
                                     }
                                     return text;
                                   });
  writer.close();
  return folder.read("out");
}

std::string expected(std::int32_t count, std::int32_t factor) {
  std::string text;
  for (std::int32_t i = 0; i < count; ++i) {
    text += std::string(i % 2 == 0 ? "A" : "b") + " " + std::to_string(i * factor) + "\n";
  }
  return text;
}

TEST(TextLines, WordsEndInABlankAndLinesInALineFeed) {
  char text[64];
  char* end = Quillet::putCharacter(text, 'x');
  end = Quillet::putWord(end, 'C');
  end = Quillet::putWord(end, -12);
  end = Quillet::putWord(end, 1234567);
  end = Quillet::putShortWord(end, 0);
  end = Quillet::putShortWord(end, 1234567);
  end = Quillet::putShortLine(end, 345);

  EXPECT_EQ(std::string(text, end), "xC -12 1234567 0 1234567 345\n");
}

TEST(TextLines, NoLinesAreNoBytes) { EXPECT_EQ(written(0, 1), ""); }

TEST(TextLines, EveryNumberOfLinesIsWrittenWhole) {
  // Some line counts end just before, at and after a block of 32 lines, and some byte counts just
  // before, at and after the end of the writer's buffer.
  for (const std::int32_t factor : {1, 1000, 7000000, -7}) {
    for (std::int32_t count = 1; count <= 300; ++count) {
      ASSERT_EQ(written(count, factor), expected(count, factor)) << count << " times " << factor;
    }
  }
}

}  // namespace
