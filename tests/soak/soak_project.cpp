// Makes the project that tools/soak converts: soak_project FOLDER COUNT [SEED]. Realistic traces in
// every format, some of them gzipped, one in ten damaged like a file after a faulty copy. The list
// files FOLDER/sound.list and FOLDER/damaged.list name them.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/trace_generator.h"

namespace {

namespace fs = std::filesystem;

using Engine = std::mt19937;

std::size_t below(Engine& engine, std::size_t count) { return engine() % count; }

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + path.string());
}

// The kinds of damage. Each changes the bytes of a whole file.
using Damage = std::function<void(std::string& bytes, Engine& engine)>;

void cutShort(std::string& bytes, Engine& engine) { bytes.resize(below(engine, bytes.size())); }

void loseSector(std::string& bytes, Engine& engine) {
  const std::size_t start = below(engine, bytes.size()) / 512 * 512;
  const std::size_t count = std::min(std::size_t{512} << below(engine, 6), bytes.size() - start);
  bytes.replace(start, count, count, '\0');
}

void flipBits(std::string& bytes, Engine& engine) {
  for (std::size_t i = 1 + below(engine, 40); i > 0; --i) {
    bytes[below(engine, bytes.size())] ^= static_cast<char>(1U << below(engine, 8));
  }
}

void putNoise(std::string& bytes, Engine& engine) {
  const std::size_t start = below(engine, bytes.size());
  const std::size_t end = std::min(bytes.size(), start + 1 + below(engine, 4000));
  for (std::size_t i = start; i < end; ++i) bytes[i] = static_cast<char>(engine());
}

/// Puts an extreme number near the start (header) or near the end (ABIF directory) of the file.
void putExtreme(std::string& bytes, Engine& engine) {
  static const std::vector<std::string> extremes{
      {4, '\0'},         {4, '\xFF'},       "\x7F\xFF\xFF\xFF", {"\x80\0\0\0", 4},
      {"\0\x40\0\0", 4}, {"\0\x40\0\1", 4}, {"\0\0\0\1", 4}};
  const std::string& extreme = extremes[below(engine, extremes.size())];
  const std::size_t distance = below(engine, std::min<std::size_t>(bytes.size() - 4, 360));
  const bool atStart = below(engine, 2) == 0;
  bytes.replace(atStart ? distance : bytes.size() - 4 - distance, 4, extreme);
}

void insertBytes(std::string& bytes, Engine& engine) {
  bytes.insert(below(engine, bytes.size()), std::string(1 + below(engine, 2000), '\r'));
}

void becomePage(std::string& bytes, Engine& engine) {
  bytes = "<html><head><title>503</title></head><body>";
  for (std::size_t i = below(engine, 400); i > 0; --i) bytes += "<p>Come back later.</p>\n";
}

void becomeEmpty(std::string& bytes, Engine&) { bytes.clear(); }

void keepStartOnly(std::string& bytes, Engine& engine) {
  for (char& byte : bytes.replace(4, bytes.size() - 4, bytes.size() - 4, '\0')) {
    if (byte == '\0') byte = static_cast<char>(engine());
  }
}

void damage(std::string& bytes, Engine& engine) {
  static const std::vector<Damage> ways{cutShort,   loseSector,  flipBits,
                                        putNoise,   putExtreme,  insertBytes,
                                        becomePage, becomeEmpty, keepStartOnly};
  ways[below(engine, ways.size())](bytes, engine);
}

struct TraceFormat {
  std::string extension;
  std::function<std::string(const TraceContents& trace, const std::string& caller)> bytes;
};

std::string commentsOf(const std::string& caller) { return "NAME=soak\nBCAL=" + caller + '\n'; }

const std::vector<TraceFormat>& formats() {
  using Trace = const TraceContents&;
  using Text = const std::string&;
  static const std::vector<TraceFormat> all{
      {".ab1",
       [](Trace trace, Text caller) {
         return trace.abif().callerName(caller).otherEntries(60).build();
       }},
      {".abi", [](Trace trace,
                  Text caller) { return trace.abif().callerName(caller).prefix(128).build(); }},
      {".scf",
       [](Trace trace, Text caller) { return trace.scf().comments(commentsOf(caller)).build(); }},
      {".scf",
       [](Trace trace, Text caller) {
         return trace.scf().comments(commentsOf(caller)).version("2.00").build();
       }},
  };
  return all;
}

void gzip(const fs::path& file) {
  if (std::system(("gzip -1 -n '" + file.string() + "'").c_str()) != 0) {
    throw std::runtime_error("can not gzip " + file.string());
  }
}

std::string readFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Writes one trace and returns its name.
std::string addTrace(const fs::path& chromats, int number, bool damaged, Engine& engine) {
  const TraceFormat& format = formats()[below(engine, formats().size())];
  const int baseCount = 300 + static_cast<int>(below(engine, 601));
  // Every third trace has no caller's name.
  const std::string caller = number % 3 == 0 ? "" : "caller " + std::to_string(number);
  const auto traceSeed = static_cast<std::uint32_t>(engine());  // 32 bits in a wider type
  std::string bytes = format.bytes(believableTrace(traceSeed, baseCount), caller);
  const bool packed = below(engine, 20) == 0;
  const bool damagedAsGzip = damaged && packed && below(engine, 2) == 0;
  if (damaged && !damagedAsGzip) damage(bytes, engine);

  std::string digits = std::to_string(number);
  std::string name = "t" + std::string(7 - std::min<std::size_t>(digits.size(), 7), '0') + digits +
                     format.extension;
  writeFile(chromats / name, bytes);
  if (!packed) return name;
  gzip(chromats / name);
  name += ".gz";
  if (damagedAsGzip) {
    bytes = readFile(chromats / name);
    damage(bytes, engine);
    writeFile(chromats / name, bytes);
  }
  return name;
}

void makeProject(const fs::path& root, int count, std::uint32_t seed) {
  for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir"}) {
    fs::create_directories(root / name);
  }
  Engine engine(seed);
  std::string sound;
  std::string harmed;
  for (int number = 1; number <= count; ++number) {
    const bool damaged = below(engine, 10) == 0;
    const std::string name = addTrace(root / "chromat_dir", number, damaged, engine);
    (damaged ? harmed : sound) += name + '\n';
  }
  writeFile(root / "sound.list", sound);
  writeFile(root / "damaged.list", harmed);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3 || argc > 4) {
    std::cerr << "usage: soak_project FOLDER COUNT [SEED]\n";
    return 2;
  }
  try {
    const auto seed = static_cast<std::uint32_t>(argc == 4 ? std::stoul(argv[3]) : 1);
    makeProject(argv[1], std::stoi(argv[2]), seed);
  } catch (const std::exception& problem) {
    std::cerr << "soak_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
