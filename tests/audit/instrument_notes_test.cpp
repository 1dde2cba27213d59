#include "audit/instrument_notes.h"

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/support/trace_builder.h"

// The files are put together here, byte by byte: the types of entries matter.

namespace {

using namespace std::string_literals;
using Quillet::InstrumentNotes;

std::string big(std::uint64_t value, int size) {
  std::string bytes;
  for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

struct Entry {
  std::string name;
  std::uint16_t type;
  std::string data;
  std::uint32_t number = 1;
  std::optional<std::uint32_t> size = {};    // instead of the data's
  std::optional<std::uint32_t> offset = {};  // instead of the place of the data
};

/// Header, data, directory; entries of 28 bytes.
std::string abif(const std::vector<Entry>& entries, std::uint16_t stride = 28,
                 std::optional<std::uint32_t> count = {}) {
  constexpr std::size_t headerSize = 128;
  std::string data;
  std::string directory;
  for (const Entry& entry : entries) {
    std::string field = entry.data;
    field.resize(4);
    if (entry.data.size() > 4 || entry.offset) {
      field = big(entry.offset.value_or(static_cast<std::uint32_t>(headerSize + data.size())), 4);
      data += entry.data;
    }
    directory += entry.name + big(entry.number, 4) + big(entry.type, 2) + big(1, 2) +
                 big(entry.data.size(), 4) + big(entry.size.value_or(entry.data.size()), 4) +
                 field + big(0, 4);
  }
  std::string header = "ABIF" + big(101, 2) + "tdir" + big(1, 4) + big(1023, 2) + big(stride, 2) +
                       big(count.value_or(entries.size()), 4) + big(directory.size(), 4) +
                       big(headerSize + data.size(), 4);
  header.resize(headerSize);
  return header + data + directory;
}

InstrumentNotes notesOf(const std::string& bytes) {
  const ScratchFolder folder;
  return Quillet::readInstrumentNotes(folder.write("trace", bytes).text());
}

std::string pascal(const std::string& text) { return static_cast<char>(text.size()) + text; }

TEST(InstrumentNotes, AreReadFromTheirEntries) {
  const InstrumentNotes notes = notesOf(abif({{"CTNM", 19, "Plate 7\0"s},
                                              {"LANE", 4, big(13, 2)},
                                              {"MCHN", 18, pascal("sequencer")},
                                              {"RUND", 10, big(2026, 2) + "\x0B\x15"},
                                              {"S/N%", 4, big(310, 8) + big(0, 0)},
                                              {"TUBE", 18, pascal("H12")}}));

  EXPECT_EQ(notes.plate, "Plate 7");
  EXPECT_EQ(notes.capillary, 13);
  EXPECT_EQ(notes.instrument, "sequencer");
  EXPECT_EQ(notes.runDate, "2026-11-21");
  EXPECT_EQ(notes.signalToNoise, 0);  // 0, 0, 0 and 310
  EXPECT_EQ(notes.well, "H12");       // four bytes, in the entry itself
}

TEST(InstrumentNotes, SignalToNoiseIsTheSmallestOfFour) {
  const auto smallest = [](const std::vector<int>& values) {
    std::string data;
    for (const int value : values) data += big(static_cast<std::uint16_t>(value), 2);
    return notesOf(abif({{"S/N%", 4, data}})).signalToNoise;
  };

  EXPECT_EQ(smallest({310, 200, 250, 400}), 200);
  EXPECT_EQ(smallest({310, 200, 250, -1}), -1);
  EXPECT_EQ(smallest({310, 200, 250, 240, 3}), 200);
  EXPECT_EQ(smallest({310, 200, 250}), std::nullopt);
  EXPECT_EQ(smallest({1, 2}), std::nullopt);
}

TEST(InstrumentNotes, TextsEndWhereTheirTypeSays) {
  const auto well = [](const std::string& data) {
    return notesOf(abif({{"TUBE", 18, data}})).well;
  };
  EXPECT_EQ(well("\3A01, more"s), "A01");
  EXPECT_EQ(well("\2A1\0"s), "A1");
  EXPECT_EQ(well("\0xxx"s), "");
  EXPECT_EQ(well("\x09short"s), "short");
  EXPECT_EQ(well("\5a\0b\nc"s), "a\0b\nc"s);
  EXPECT_EQ(well(pascal(std::string(255, 'w'))), std::string(255, 'w'));
  EXPECT_EQ(well(""), std::nullopt);

  const auto plate = [](const std::string& data) {
    return notesOf(abif({{"CTNM", 19, data}})).plate;
  };
  EXPECT_EQ(plate("ab\0"s), "ab");
  EXPECT_EQ(plate("long name\0 and more"s), "long name");
  EXPECT_EQ(plate("no zero byte"s), "no zero byte");
  EXPECT_EQ(plate("\0"s), "");
}

TEST(InstrumentNotes, DatesThatNoCalendarHasAreUnknown) {
  const auto date = [](int year, int month, int day) {
    return notesOf(abif({{"RUND", 10,
                          big(static_cast<std::uint16_t>(year), 2) + static_cast<char>(month) +
                              static_cast<char>(day)}}))
        .runDate;
  };
  EXPECT_EQ(date(1999, 1, 31), "1999-01-31");
  EXPECT_EQ(date(987, 12, 1), "0987-12-01");
  EXPECT_EQ(date(0, 1, 1), std::nullopt);
  EXPECT_EQ(date(-1, 1, 1), std::nullopt);
  EXPECT_EQ(date(2026, 0, 1), std::nullopt);
  EXPECT_EQ(date(2026, 13, 1), std::nullopt);
  EXPECT_EQ(date(2026, 1, 0), std::nullopt);
  EXPECT_EQ(date(2026, 1, 32), std::nullopt);
}

TEST(InstrumentNotes, AnotherTypeOrNumberIsUnknown) {
  const InstrumentNotes notes = notesOf(abif({{"CTNM", 18, pascal("Plate 7")},
                                              {"LANE", 5, big(13, 2)},
                                              {"MCHN", 19, "sequencer\0"s},
                                              {"RUND", 11, big(2026, 2) + "\x0B\x15"},
                                              {"RUND", 10, big(2026, 2) + "\x0B\x15", 2},
                                              {"S/N%", 3, big(310, 8)},
                                              {"TUBE", 2, "H12"}}));

  EXPECT_EQ(notes.plate, std::nullopt);
  EXPECT_EQ(notes.capillary, std::nullopt);
  EXPECT_EQ(notes.instrument, std::nullopt);
  EXPECT_EQ(notes.runDate, std::nullopt);
  EXPECT_EQ(notes.signalToNoise, std::nullopt);
  EXPECT_EQ(notes.well, std::nullopt);
}

TEST(InstrumentNotes, TheLastOfSeveralEntriesCounts) {
  const std::string bytes =
      abif({{"TUBE", 18, pascal("first")}, {"TUBE", 18, pascal("other")}, {"LANE", 4, big(1, 2)}});

  EXPECT_EQ(notesOf(bytes).well, "other");
}

TEST(InstrumentNotes, OffsetsCountFromTheMagicAfterACarriersHeader) {
  const std::string bytes = abif({{"TUBE", 18, pascal("a long well")}, {"LANE", 4, big(1, 2)}});

  const InstrumentNotes notes = notesOf(std::string(128, 'x') + bytes);

  EXPECT_EQ(notes.well, "a long well");
  EXPECT_EQ(notes.capillary, 1);
}

TEST(InstrumentNotes, DataThatTheFileDoesNotHoldAreUnknown) {
  const std::string name = pascal("sequencer");
  const auto instrument = [&](std::uint32_t size, std::uint32_t offset) {
    return notesOf(abif({{"MCHN", 18, name, 1, size, offset}})).instrument;
  };
  EXPECT_EQ(instrument(10, 128), "sequencer");
  EXPECT_EQ(instrument(10, 10'000), std::nullopt);
  EXPECT_EQ(instrument(10, 0x7FFFFFF0), std::nullopt);
  EXPECT_EQ(instrument(10, 0xFFFFFFF0), std::nullopt);
  EXPECT_EQ(instrument(0xFFFFFFFF, 128), std::nullopt);
}

TEST(InstrumentNotes, OtherFilesHaveNone) {
  const ScratchFolder folder;
  const std::string scf = ScfBuilder().build();
  for (const std::string& bytes : {""s, "ABIF"s, "text"s, scf, abif({}).substr(0, 30)}) {
    const InstrumentNotes notes = Quillet::readInstrumentNotes(folder.write("trace", bytes).text());
    EXPECT_EQ(notes.well, std::nullopt);
    EXPECT_EQ(notes.plate, std::nullopt);
  }
  EXPECT_EQ(Quillet::readInstrumentNotes(folder.at("missing").text()).well, std::nullopt);
}

TEST(InstrumentNotes, EveryCutIsReadWithoutTrouble) {
  const std::string bytes = abif({{"TUBE", 18, pascal("a long well")}, {"LANE", 4, big(1, 2)}});
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const auto well = notesOf(bytes.substr(0, size)).well;
    EXPECT_EQ(well.value_or("a long well"), "a long well") << size;
  }
}

TEST(InstrumentNotes, TakeNoLongerThanTheFileIsLong) {
  // 70,000 entries that all name the whole file as their text, and walks in place and by bytes.
  std::vector<Entry> entries(70'000, {"CTNM", 19, "", 1, 2'000'000, 200});
  const std::string files[] = {abif(entries, 28, 0xFFFFFFFF), abif(entries, 0, 0xFFFFFFFF),
                               abif(entries, 1, 0xFFFFFFFF)};

  const auto start = std::chrono::steady_clock::now();
  for (const std::string& bytes : files) notesOf(bytes);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
