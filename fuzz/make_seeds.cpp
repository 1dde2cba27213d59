// Makes the first inputs of the fuzz targets: make_seeds FOLDER fills FOLDER/abif, FOLDER/scf,
// FOLDER/resource_file, FOLDER/poly, FOLDER/phd_result and FOLDER/poly_result.

#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/trace_builder.h"
#include "tests/support/trace_generator.h"

namespace {

namespace fs = std::filesystem;
using Seeds = std::vector<std::pair<std::string, std::string>>;  // names and bytes

Seeds abifSeeds() {
  const std::vector<int> qualities{9, 200, 0, 30};
  return {
      {"bare", AbifBuilder().build()},
      {"prefixed", AbifBuilder().prefix(128).build()},
      {"directory_first", AbifBuilder().directoryFirst().build()},
      {"narrow_entries", AbifBuilder().stride(24).build()},
      {"wide_entries", AbifBuilder().stride(40).build()},
      {"no_stride", AbifBuilder().headerStride(0).headerEntryCount(0xFFFFFFFF).build()},
      {"endless", AbifBuilder().headerStride(1).headerEntryCount(0xFFFFFFFF).build()},
      {"no_calls", AbifBuilder().without("PBAS", 1).build()},
      {"no_caller", AbifBuilder().without("SPAC", 2).build()},
      {"long_caller", AbifBuilder().count("SPAC", 2, 0xFFFFFFFF).build()},
      {"one_letter_twice", AbifBuilder().baseOrder("GATA").build()},
      {"odd_qualities", AbifBuilder().qualities(qualities).build()},
      {"negative_offsets", AbifBuilder().dataOffset("PBAS", 1, 0xFFFFFFF0).build()},
      {"channels_behind_end", AbifBuilder().dataOffset("DATA", 9, 0x7FFFFFFF).build()},
      {"met_by_nothing",
       AbifBuilder().count("DATA", 9, 16000).count("DATA", 10, 16000).last("DATA", 9).build()},
      {"many_entries", AbifBuilder().otherEntries(100).build()},
      {"random", randomTrace(1, 300, 40, 2000).abif().build()},
      {"believable", believableTrace(2, 70).abif().build()},
  };
}

Seeds scfSeeds() {
  Seeds seeds{
      {"cut", ScfBuilder().truncatedTo(150).build()},
      {"header_only", ScfBuilder().truncatedTo(44).build()},
      {"no_caller", ScfBuilder().comments("NAME=x\n").build()},
      {"caller_at_once", ScfBuilder().comments("BCAL=x").build()},
      {"other_letters", ScfBuilder().bases("AcNT-").build()},
      {"no_bases", ScfBuilder().bases("").build()},
      {"negative_offsets", ScfBuilder().header(8, 0xFFFFFFFF).header(24, 0x80000000).build()},
      {"met_by_nothing", ScfBuilder().header(4, 16000).header(12, 16000).build()},
      {"random", randomTrace(3, 300, 40, 2000).scf().build()},
      {"believable", believableTrace(4, 70).scf().build()},
  };
  for (const char* version : {"1.00", "2.00", "3.00", "3.10"}) {
    for (const std::uint32_t size : {1U, 2U}) {
      seeds.emplace_back(std::string(version) + "_" + std::to_string(8 * size) + "_bits",
                         ScfBuilder().version(version).sampleSize(size).build());
    }
  }
  return seeds;
}

Seeds resourceFileSeeds() {
  return {
      {"directories", "chromatdir in\nphddir out/\npolydir /x extra words\n"},
      {"flags", "flag -o -s\nflag -d project\nflag -l\nflag names"},
      {"both", "phddir a\nflag -nostrip -help\n%%\n-dir\n/root\n-list\n-\n-overwrite\n"},
      {"later_wins", "polydir a\npolydir b\nflag -d x -d y\n%%\n-d\nz\n"},
      {"blank_lines", "\n \t\r\n\v\f\nflag\n"},
      {"bad_word", "\n\n# comment\n"},
      {"bad_flag", "flag -x\nphddir p\n"},
      {"no_argument", "flag -o\nchromatdir\n"},
      {"flag_without_argument", "flag -dir\n"},
      {"second_list_without_argument", "flag -l names\nflag -list\n"},
      {"command_line_without_argument", "\n%%\n-o\n-list\n"},
  };
}

std::string bigEndian(std::uint32_t value, int size) {
  std::string bytes;
  for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return bytes;
}

/// One input of the peak computation's target; see there for what the bytes mean.
std::string polySeed(std::uint32_t pointCount, const std::string& bases,
                     const std::vector<std::int32_t>& peaks, bool anywhere,
                     const std::string& signal) {
  std::string bytes = bigEndian(pointCount, 2) + static_cast<char>(bases.size()) +
                      static_cast<char>(anywhere ? 1 : 0) + bases;
  for (const std::int32_t peak : peaks) {
    bytes += bigEndian(static_cast<std::uint32_t>(peak), anywhere ? 4 : 2);
  }
  return bytes + signal;
}

/// The channels of a trace, one behind the other.
std::string signalOf(const TraceContents& trace) {
  std::string bytes;
  for (const std::vector<int>& channel : trace.channels) {
    for (const int sample : channel) bytes += bigEndian(static_cast<std::uint32_t>(sample), 2);
  }
  return bytes;
}

std::string polySeed(const TraceContents& trace) {
  // A byte below 192 stands for the letter that its two lowest bits count to.
  std::string bases;
  for (const char letter : trace.bases) {
    const std::size_t channel = std::string("ACGT").find(letter);
    bases += channel == std::string::npos ? '\xFF' : static_cast<char>(channel);
  }
  std::vector<std::int32_t> peaks(trace.peaks.begin(), trace.peaks.end());
  const auto pointCount = static_cast<std::uint32_t>(trace.channels[0].size());
  peaks.push_back(static_cast<std::int32_t>(pointCount));
  return polySeed(pointCount, bases, peaks, false, signalOf(trace));
}

Seeds polySeeds() {
  const std::string waves("\0\0\1\0\3\0\2\0\0\7\0\0\377\377\0\1", 16);
  // Twice at one end of the trace, twice at the other: every second search range is half a trace.
  std::vector<std::int32_t> ends;
  for (int i = 0; i <= 60; ++i) ends.push_back(i / 2 % 2 == 0 ? 0 : 2600);
  const std::vector<std::int32_t> far{-2147483647 - 1, 2147483647, 5, -1, 2147483647};
  return {
      {"empty", ""},
      {"no_samples", polySeed(0, "\1\2\3", {1, 4, 7, 0}, false, "")},
      {"all_zero", polySeed(2600, "\1\2\3", {10, 20, 30, 2600}, false, "")},
      {"waves", polySeed(2600, "\1\2\3\300N", {10, 20, 30, 40, 50, 2600}, false, waves)},
      {"short", polySeed(12, "\1\2\3", {1, 4, 7, 12}, false, waves)},
      {"end_to_end", polySeed(2600, std::string(60, '\1'), ends, false, waves)},
      {"far", polySeed(2501, "\1\2\3\1", far, true, waves)},
      {"all_equal",
       polySeed(2500, std::string(50, '\2'), std::vector<std::int32_t>(51, 700), false, waves)},
      {"random", polySeed(randomTrace(5, 700, 60, 2000))},
      {"believable", polySeed(believableTrace(6, 200))},
  };
}

Seeds phdResultSeeds() {
  const std::string header =
      "BEGIN_SEQUENCE clone\n\nBEGIN_COMMENT\nTIME: Sat\nEND_COMMENT\n\nBEGIN_DNA\n";
  const std::string lines = "A 20 5\nc 9 17\nN -128 -2147483648\n";
  const std::string tag = "BEGIN_TAG\nTYPE: x\nEND_TAG\n";
  const std::string item = "WR{\nx\n}\n";
  return {
      {"empty", ""},
      {"whole", header + lines + "END_DNA\nEND_SEQUENCE\n"},
      {"no_bases", header + "END_DNA\nEND_SEQUENCE\n"},
      {"tags", header + lines + "END_DNA\n" + tag + "\n" + tag + "END_SEQUENCE\n"},
      {"items", header + lines + "END_DNA\nEND_SEQUENCE\n\n" + item + item},
      {"cut", header + lines},
      {"open_block", header + lines + "END_DNA\nEND_SEQUENCE\nWR{\nx\n"},
      {"odd_bases", header + "\n 1 2\n  3 4\nE 5 6\nEND_DNA\nEND_SEQUENCE\n"},
      {"long_numbers", header + "A 99999999999 -99999999999\nEND_DNA\nEND_SEQUENCE\n"},
      {"two_headers", header + header + lines + "END_DNA\nEND_SEQUENCE\n"},
  };
}

Seeds polyResultSeeds() {
  const std::string first = "clone 1 1 1 1 1\n";
  const std::string line = "A 5 100 0 C 6 50 0 900 450 0 3\n";
  return {
      {"empty", ""},
      {"first_line", first},
      {"whole", first + line + line + line},
      {"cut", first + line + line.substr(0, 20)},
      {"odd_bases", first + "\n" + line.substr(1) + " " + line.substr(1)},
      {"thirteen_fields", first + "A " + line},
      {"another_first_line", "clone 1 1 1 1\n" + line},
  };
}

void write(const fs::path& folder, const Seeds& seeds) {
  fs::create_directories(folder);
  for (const auto& [name, bytes] : seeds) {
    std::ofstream stream(folder / name, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw std::runtime_error("can not write " + (folder / name).string());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_seeds FOLDER\n";
    return 2;
  }
  try {
    const fs::path folder = argv[1];
    write(folder / "abif", abifSeeds());
    write(folder / "scf", scfSeeds());
    write(folder / "resource_file", resourceFileSeeds());
    write(folder / "poly", polySeeds());
    write(folder / "phd_result", phdResultSeeds());
    write(folder / "poly_result", polyResultSeeds());
  } catch (const std::exception& problem) {
    std::cerr << "make_seeds: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
