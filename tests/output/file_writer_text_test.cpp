#include "output/file_writer.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tests/output/written_bytes.h"

// The bytes that the text operations of FileWriter write.

namespace {

using Tessaly::FileWriter;
using Tessaly::String;

struct Case {
  const char* name;
  Action action;
  std::string expected;
};

void expectAll(const std::vector<Case>& cases) {
  for (const Case& row : cases) EXPECT_EQ(written(row.action), row.expected) << row.name;
}

TEST(FileWriterText, BareValuesAreWrittenAsTheyAre) {
  expectAll({
      {"String", [](FileWriter& w) { w.write(String("ab c")); }, "ab c"},
      {"empty String", [](FileWriter& w) { w.write(String()); }, ""},
      {"text", [](FileWriter& w) { w.write("ab c"); }, "ab c"},
      {"empty text", [](FileWriter& w) { w.write(""); }, ""},
      {"character", [](FileWriter& w) { w.write('x'); }, "x"},
      {"integer", [](FileWriter& w) { w.write(120); }, "120"},
      {"double", [](FileWriter& w) { w.write(2.5); }, "2.5"},
      {"newline", [](FileWriter& w) { w.newline(); }, "\n"},
      {"operator, String", [](FileWriter& w) { w << String("ab"); }, "ab"},
      {"operators in a row", [](FileWriter& w) { w << "a" << 'b' << 1 << 2.5 << String("c"); },
       "ab12.5c"},
  });
}

TEST(FileWriterText, AStringIsWrittenWithTheZeroBytesInIt) {
  String text;
  text.append("a\0b", 3);
  const std::string bytes("a\0b", 3);

  expectAll({
      {"write", [&](FileWriter& w) { w.write(text); }, bytes},
      {"operator", [&](FileWriter& w) { w << text; }, bytes},
      {"line", [&](FileWriter& w) { w.writeLine(text); }, bytes + "\n"},
      {"word", [&](FileWriter& w) { w.writeWord(text); }, bytes + " "},
      {"separator", [&](FileWriter& w) { w.writeWithSeparator(text, ';'); }, bytes + ";"},
      {"terminated", [&](FileWriter& w) { w.writeTerminated(text); }, bytes + '\0'},
      {"field", [&](FileWriter& w) { w.writeField(text, 5); }, bytes + "  "},
      {"cut field", [&](FileWriter& w) { w.writeField(text, 2); }, bytes.substr(0, 2)},
      {"left", [&](FileWriter& w) { w.writeAligned(text, 5, false); }, bytes + "  "},
      {"right", [&](FileWriter& w) { w.writeAligned(text, 5, true); }, "  " + bytes},
      {"never cut", [&](FileWriter& w) { w.writeAligned(text, 1, true); }, bytes},
  });
}

TEST(FileWriterText, IntegersAreDecimalWithAMinusAndNothingElse) {
  expectAll({
      {"minus forty-five", [](FileWriter& w) { w.write(-45); }, "-45"},
      {"zero", [](FileWriter& w) { w.write(0); }, "0"},
      {"one digit", [](FileWriter& w) { w.write(9); }, "9"},
      {"round", [](FileWriter& w) { w.write(1000); }, "1000"},
      {"largest", [](FileWriter& w) { w.write(std::numeric_limits<std::int32_t>::max()); },
       "2147483647"},
      {"smallest", [](FileWriter& w) { w.write(std::numeric_limits<std::int32_t>::min()); },
       "-2147483648"},
  });
}

TEST(FileWriterText, DoublesAreWrittenAsTheStringClassConvertsThem) {
  expectAll({
      {"whole", [](FileWriter& w) { w.write(100.0); }, "100"},
      {"zero", [](FileWriter& w) { w.write(0.0); }, "0"},
      {"fraction", [](FileWriter& w) { w.write(-0.25); }, "-0.25"},
      {"small", [](FileWriter& w) { w.write(1e-7); }, "1.e-07"},
  });
}

TEST(FileWriterText, LinesEndInALineFeed) {
  expectAll({
      {"String", [](FileWriter& w) { w.writeLine(String("ab")); }, "ab\n"},
      {"text", [](FileWriter& w) { w.writeLine("ab"); }, "ab\n"},
      {"character", [](FileWriter& w) { w.writeLine('x'); }, "x\n"},
      {"integer", [](FileWriter& w) { w.writeLine(12); }, "12\n"},
      {"double", [](FileWriter& w) { w.writeLine(2.5); }, "2.5\n"},
  });
}

TEST(FileWriterText, WordsEndInASpace) {
  expectAll({
      {"String", [](FileWriter& w) { w.writeWord(String("ab")); }, "ab "},
      {"text", [](FileWriter& w) { w.writeWord("ab"); }, "ab "},
      {"character", [](FileWriter& w) { w.writeWord('x'); }, "x "},
      {"integer", [](FileWriter& w) { w.writeWord(12); }, "12 "},
      {"double", [](FileWriter& w) { w.writeWord(2.5); }, "2.5 "},
  });
}

TEST(FileWriterText, TheCallerChoosesTheSeparator) {
  expectAll({
      {"String", [](FileWriter& w) { w.writeWithSeparator(String("ab"), ';'); }, "ab;"},
      {"text", [](FileWriter& w) { w.writeWithSeparator("ab", '\t'); }, "ab\t"},
      {"character", [](FileWriter& w) { w.writeWithSeparator('x', ','); }, "x,"},
      {"integer", [](FileWriter& w) { w.writeWithSeparator(12, '/'); }, "12/"},
      {"double", [](FileWriter& w) { w.writeWithSeparator(2.5, '|'); }, "2.5|"},
  });
}

TEST(FileWriterText, RepeatedCharactersAreWrittenAsOftenAsAsked) {
  expectAll({
      {"three", [](FileWriter& w) { w.writeRepeated('-', 3); }, "---"},
      {"more than a buffer", [](FileWriter& w) { w.writeRepeated('-', 3000); },
       std::string(3000, '-')},
      {"none", [](FileWriter& w) { w.writeRepeated('-', 0); }, ""},
      {"negative", [](FileWriter& w) { w.writeRepeated('-', -3); }, ""},
  });
}

TEST(FileWriterText, AFieldIsExactlyAsWideAsAsked) {
  expectAll({
      {"cut text", [](FileWriter& w) { w.writeField("abcdef", 3); }, "abc"},
      {"padded text", [](FileWriter& w) { w.writeField("ab", 5); }, "ab   "},
      {"exact text", [](FileWriter& w) { w.writeField("abc", 3); }, "abc"},
      {"no width", [](FileWriter& w) { w.writeField("abc", 0); }, ""},
      {"cut String", [](FileWriter& w) { w.writeField(String("abcdef"), 3); }, "abc"},
      {"padded String", [](FileWriter& w) { w.writeField(String("ab"), 5); }, "ab   "},
      {"empty String", [](FileWriter& w) { w.writeField(String(), 2); }, "  "},
  });
}

TEST(FileWriterText, AnAlignedTextIsNeverCut) {
  expectAll({
      {"long text", [](FileWriter& w) { w.writeAligned("abcdef", 3, true); }, "abcdef"},
      {"long String", [](FileWriter& w) { w.writeAligned(String("abcdef"), 3, false); }, "abcdef"},
      {"long integer", [](FileWriter& w) { w.writeAligned(-12345, 3, true); }, "-12345"},
      {"long double", [](FileWriter& w) { w.writeAligned(2.5, 1, false); }, "2.5"},
      {"character without width", [](FileWriter& w) { w.writeAligned('c', 0, true); }, "c"},
      {"character without width, left", [](FileWriter& w) { w.writeAligned('c', 0, false); }, "c"},
  });
}

TEST(FileWriterText, AnAlignedValueIsPaddedWithSpaces) {
  expectAll({
      {"integer right", [](FileWriter& w) { w.writeAligned(7, 4, true); }, "   7"},
      {"integer left", [](FileWriter& w) { w.writeAligned(7, 4, false); }, "7   "},
      {"text right", [](FileWriter& w) { w.writeAligned("ab", 5, true); }, "   ab"},
      {"text left", [](FileWriter& w) { w.writeAligned("ab", 5, false); }, "ab   "},
      {"String right", [](FileWriter& w) { w.writeAligned(String("ab"), 5, true); }, "   ab"},
      {"String left", [](FileWriter& w) { w.writeAligned(String("ab"), 5, false); }, "ab   "},
      {"character right", [](FileWriter& w) { w.writeAligned('c', 3, true); }, "  c"},
      {"character left", [](FileWriter& w) { w.writeAligned('c', 3, false); }, "c  "},
      {"double right", [](FileWriter& w) { w.writeAligned(2.5, 6, true); }, "   2.5"},
      {"double left", [](FileWriter& w) { w.writeAligned(2.5, 6, false); }, "2.5   "},
      {"wider than a buffer", [](FileWriter& w) { w.writeAligned(7, 2000, true); },
       std::string(1999, ' ') + "7"},
  });
}

}  // namespace
