#pragma once

#include <cstdint>
#include <string>

#include "output/file_writer.h"
#include "tests/output/written_bytes.h"

// Every writing operation of FileWriter, for the tests of flushing.

/// One operation and the bytes that it writes.
struct Operation {
  const char* name;
  Action action;
  std::string bytes;
};

inline const std::int16_t int16s[] = {0x6162, 0x6364};
inline const std::uint16_t uint16s[] = {0x6162, 0x6364};
inline const std::int32_t int32s[] = {0x61626364, 0x65666768};
inline const std::uint32_t uint32s[] = {0x61626364, 0x65666768};
inline const float floats[] = {1.5f, -2.0f};
inline const double doubles[] = {0.1};
inline const char* const characters = "abcd";
inline const auto* const octets = reinterpret_cast<const unsigned char*>("abcd");

/// Operations that never leave the buffer full.
inline const Operation placing[] = {
    {"write, String", [](Tessaly::FileWriter& w) { w.write(Tessaly::String("abc")); }, "abc"},
    {"write, text", [](Tessaly::FileWriter& w) { w.write("abc"); }, "abc"},
    {"write, integer", [](Tessaly::FileWriter& w) { w.write(-123); }, "-123"},
    {"write, double", [](Tessaly::FileWriter& w) { w.write(12.5); }, "12.5"},
    {"newline", [](Tessaly::FileWriter& w) { w.newline(); }, "\n"},
    {"line, String", [](Tessaly::FileWriter& w) { w.writeLine(Tessaly::String("abc")); }, "abc\n"},
    {"line, text", [](Tessaly::FileWriter& w) { w.writeLine("abc"); }, "abc\n"},
    {"line, character", [](Tessaly::FileWriter& w) { w.writeLine('c'); }, "c\n"},
    {"line, integer", [](Tessaly::FileWriter& w) { w.writeLine(123); }, "123\n"},
    {"line, double", [](Tessaly::FileWriter& w) { w.writeLine(0.5); }, "0.5\n"},
    {"word, String", [](Tessaly::FileWriter& w) { w.writeWord(Tessaly::String("abc")); }, "abc "},
    {"word, text", [](Tessaly::FileWriter& w) { w.writeWord("abc"); }, "abc "},
    {"word, character", [](Tessaly::FileWriter& w) { w.writeWord('c'); }, "c "},
    {"word, integer", [](Tessaly::FileWriter& w) { w.writeWord(123); }, "123 "},
    {"word, double", [](Tessaly::FileWriter& w) { w.writeWord(0.5); }, "0.5 "},
    {"separator, String",
     [](Tessaly::FileWriter& w) { w.writeWithSeparator(Tessaly::String("abc"), ';'); }, "abc;"},
    {"separator, text", [](Tessaly::FileWriter& w) { w.writeWithSeparator("abc", ';'); }, "abc;"},
    {"separator, character", [](Tessaly::FileWriter& w) { w.writeWithSeparator('c', ';'); }, "c;"},
    {"separator, integer", [](Tessaly::FileWriter& w) { w.writeWithSeparator(123, ';'); }, "123;"},
    {"separator, double", [](Tessaly::FileWriter& w) { w.writeWithSeparator(0.5, ';'); }, "0.5;"},
    {"char run", [](Tessaly::FileWriter& w) { w.writeBytes(characters, 4); }, "abcd"},
    {"unsigned char run", [](Tessaly::FileWriter& w) { w.writeBytes(octets, 4); }, "abcd"},
    {"terminated String", [](Tessaly::FileWriter& w) { w.writeTerminated(Tessaly::String("ab")); },
     bytes({'a', 'b', 0})},
    {"terminated text", [](Tessaly::FileWriter& w) { w.writeTerminated("ab"); },
     bytes({'a', 'b', 0})},
    {"cut field, String", [](Tessaly::FileWriter& w) { w.writeField(Tessaly::String("abc"), 2); },
     "ab"},
    {"cut field, text", [](Tessaly::FileWriter& w) { w.writeField("abc", 2); }, "ab"},
    {"padded field, String", [](Tessaly::FileWriter& w) { w.writeField(Tessaly::String("ab"), 4); },
     "ab  "},
    {"padded field, text", [](Tessaly::FileWriter& w) { w.writeField("ab", 4); }, "ab  "},
    {"left, String",
     [](Tessaly::FileWriter& w) { w.writeAligned(Tessaly::String("ab"), 4, false); }, "ab  "},
    {"left, text", [](Tessaly::FileWriter& w) { w.writeAligned("ab", 4, false); }, "ab  "},
    {"left, character", [](Tessaly::FileWriter& w) { w.writeAligned('c', 4, false); }, "c   "},
    {"left, integer", [](Tessaly::FileWriter& w) { w.writeAligned(7, 4, false); }, "7   "},
    {"left, double", [](Tessaly::FileWriter& w) { w.writeAligned(0.5, 4, false); }, "0.5 "},
    {"right, String",
     [](Tessaly::FileWriter& w) { w.writeAligned(Tessaly::String("ab"), 4, true); }, "  ab"},
    {"right, text", [](Tessaly::FileWriter& w) { w.writeAligned("ab", 4, true); }, "  ab"},
    {"right, character", [](Tessaly::FileWriter& w) { w.writeAligned('c', 4, true); }, "   c"},
    {"right, integer", [](Tessaly::FileWriter& w) { w.writeAligned(7, 4, true); }, "   7"},
    {"right, double", [](Tessaly::FileWriter& w) { w.writeAligned(0.5, 4, true); }, " 0.5"},
    {"operator, String", [](Tessaly::FileWriter& w) { w << Tessaly::String("abc"); }, "abc"},
    {"operator, text", [](Tessaly::FileWriter& w) { w << "abc"; }, "abc"},
    {"operator, character", [](Tessaly::FileWriter& w) { w << 'c'; }, "c"},
    {"operator, integer", [](Tessaly::FileWriter& w) { w << 123; }, "123"},
    {"operator, double", [](Tessaly::FileWriter& w) { w << 0.5; }, "0.5"},
    {"repeated", [](Tessaly::FileWriter& w) { w.writeRepeated('a', 4); }, "aaaa"},
};

/// Operations that may leave the buffer full.
inline const Operation storing[] = {
    {"write, character", [](Tessaly::FileWriter& w) { w.write('c'); }, "c"},
    {"char byte", [](Tessaly::FileWriter& w) { w.writeByte('c'); }, "c"},
    {"unsigned char byte", [](Tessaly::FileWriter& w) { w.writeByte(octets[2]); }, "c"},
    {"int16", [](Tessaly::FileWriter& w) { w.writeBigEndian(int16s[0]); }, "ab"},
    {"uint16", [](Tessaly::FileWriter& w) { w.writeBigEndian(uint16s[0]); }, "ab"},
    {"int32", [](Tessaly::FileWriter& w) { w.writeBigEndian(int32s[0]); }, "abcd"},
    {"uint32", [](Tessaly::FileWriter& w) { w.writeBigEndian(uint32s[0]); }, "abcd"},
    {"int16 array", [](Tessaly::FileWriter& w) { w.writeBigEndian(int16s, 2); }, "abcd"},
    {"uint16 array", [](Tessaly::FileWriter& w) { w.writeBigEndian(uint16s, 2); }, "abcd"},
    {"int32 array", [](Tessaly::FileWriter& w) { w.writeBigEndian(int32s, 2); }, "abcdefgh"},
    {"uint32 array", [](Tessaly::FileWriter& w) { w.writeBigEndian(uint32s, 2); }, "abcdefgh"},
    {"float", [](Tessaly::FileWriter& w) { w.writeNative(floats[0]); }, memoryOf(floats[0])},
    {"double", [](Tessaly::FileWriter& w) { w.writeNative(doubles[0]); }, memoryOf(doubles[0])},
    {"float array", [](Tessaly::FileWriter& w) { w.writeNative(floats, 2); }, memoryOf(floats)},
    {"double array", [](Tessaly::FileWriter& w) { w.writeNative(doubles, 1); }, memoryOf(doubles)},
};
