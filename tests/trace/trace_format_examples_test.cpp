#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "tests/trace/opened_trace.h"

// The worked examples of docs/formats/abif.md and docs/formats/scf.md, byte by byte.

namespace {

/// The bytes of a text of hexadecimal digits.
std::string bytesOf(const std::string& hexadecimal) {
  std::istringstream pairs(hexadecimal);
  std::string content;
  for (std::string pair; pairs >> pair;) {
    content += static_cast<char>(std::stoi(pair, nullptr, 16));  // the same bits, perhaps negative
  }
  return content;
}

TEST(TraceFormatExamples, TheAbifFile) {
  const std::string content = bytesOf(
      "41 42 49 46 00 65 74 64 69 72 00 00 00 01 03 FF 00 "
      "1C 00 00 00 09 00 00 00 FC 00 00 00 46 00 00 00 00 "
      "00 01 00 02 00 03 00 04 00 05 00 06 "
      "00 07 00 08 00 09 00 0A 00 0B 00 0C "
      "41 43 14 1E 00 00 00 02 03 4B 42 31 "
      "46 57 4F 5F 00 00 00 01 00 02 00 01 00 00 00 04 00 00 00 04 47 41 54 43 00 00 00 00 "
      "44 41 54 41 00 00 00 09 00 04 00 02 00 00 00 03 00 00 00 06 00 00 00 22 00 00 00 00 "
      "44 41 54 41 00 00 00 0A 00 04 00 02 00 00 00 03 00 00 00 06 00 00 00 28 00 00 00 00 "
      "44 41 54 41 00 00 00 0B 00 04 00 02 00 00 00 03 00 00 00 06 00 00 00 2E 00 00 00 00 "
      "44 41 54 41 00 00 00 0C 00 04 00 02 00 00 00 03 00 00 00 06 00 00 00 34 00 00 00 00 "
      "50 42 41 53 00 00 00 01 00 02 00 01 00 00 00 02 00 00 00 02 00 00 00 3A 00 00 00 00 "
      "50 43 4F 4E 00 00 00 01 00 02 00 01 00 00 00 02 00 00 00 02 00 00 00 3C 00 00 00 00 "
      "50 4C 4F 43 00 00 00 01 00 04 00 02 00 00 00 02 00 00 00 04 00 00 00 3E 00 00 00 00 "
      "53 50 41 43 00 00 00 02 00 12 00 01 00 00 00 04 00 00 00 04 00 00 00 42 00 00 00 00 ");
  ASSERT_EQ(content.size(), 322u);

  const OpenedTrace opened = openBytes(content);

  ASSERT_TRUE(opened.read);
  EXPECT_EQ(opened.a, Samples({4, 5, 6}));
  EXPECT_EQ(opened.c, Samples({10, 11, 12}));
  EXPECT_EQ(opened.g, Samples({1, 2, 3}));
  EXPECT_EQ(opened.t, Samples({7, 8, 9}));
  EXPECT_EQ(opened.bases, "AC");
  EXPECT_EQ(opened.qualities, bytes({20, 30}));
  EXPECT_EQ(opened.peaks, Peaks({0, 2, 3}));
  EXPECT_EQ(opened.callerName, "KB1");
}

TEST(TraceFormatExamples, TheScfFile) {
  const std::string header = bytesOf(
      "2E 73 63 66 00 00 00 03 00 00 00 80 00 00 00 01 "
      "00 00 00 00 00 00 00 00 00 00 00 98 00 00 00 09 "
      "00 00 00 A4 33 2E 30 30 00 00 00 02 ");
  const std::string content = header + std::string(128 - header.size(), '\0') +
                              bytesOf(
                                  "00 01 00 00 00 00 "
                                  "00 05 FF FB 00 00 "
                                  "00 00 00 00 00 00 "
                                  "00 00 00 0A FF EC "
                                  "00 00 00 01 1E 00 00 02 41 00 00 00 "
                                  "42 43 41 4C 3D 4B 42 31 0A ");
  ASSERT_EQ(content.size(), 173u);

  const OpenedTrace opened = openBytes(content);

  ASSERT_TRUE(opened.read);
  EXPECT_EQ(opened.a, Samples({1, 2, 3}));
  EXPECT_EQ(opened.c, Samples({5, 5, 5}));
  EXPECT_EQ(opened.g, Samples({0, 0, 0}));
  EXPECT_EQ(opened.t, Samples({0, 10, 0}));
  EXPECT_EQ(opened.bases, "A");
  EXPECT_EQ(opened.qualities, bytes({30}));
  EXPECT_EQ(opened.peaks, Peaks({1, 3}));
  EXPECT_EQ(opened.callerName, "KB1");
}

}  // namespace
