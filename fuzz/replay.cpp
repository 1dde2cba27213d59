// Runs a fuzz target over given inputs, with any compiler:
//   replay_x [-mutants N] FILE OR FOLDER...
// Every file of a folder is an input; a missing folder holds none. With -mutants, each input is
// followed by N damaged copies of it. Every run makes the same copies.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<fs::path> filesOf(const fs::path& place) {
  if (fs::is_regular_file(place)) return {place};
  std::vector<fs::path> files;
  if (!fs::is_directory(place)) return files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(place)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  return files;
}

/// Makes damaged copies: cut short, with wrong bytes, or with an extreme 32-bit number.
class Damage {
 public:
  Bytes damaged(Bytes bytes) {
    if (bytes.empty()) return bytes;
    switch (below(3)) {
      case 0:
        bytes.resize(below(bytes.size()));
        return bytes;
      case 1:
        for (std::size_t count = 1 + below(8); count > 0; --count) {
          bytes[below(bytes.size())] = static_cast<std::uint8_t>(below(256));
        }
        return bytes;
      default:
        putExtreme(bytes);
        return bytes;
    }
  }

 private:
  std::size_t below(std::size_t count) { return engine_() % count; }

  void putExtreme(Bytes& bytes) {
    constexpr std::uint32_t extremes[]{0,          1,          0xFFFFFFFF, 0x7FFFFFFF,
                                       0x80000000, 0x00010000, 0x00400001, 0xFFFFFF00};
    const std::uint32_t extreme = extremes[below(std::size(extremes))];
    const std::size_t start = below(bytes.size());
    for (std::size_t i = 0; i < 4 && start + i < bytes.size(); ++i) {
      bytes[start + i] = static_cast<std::uint8_t>(extreme >> (24 - 8 * i) & 0xFF);
    }
  }

  std::mt19937 engine_;  // the same seed in every run
};

void runTarget(const Bytes& bytes) {
  // A copy of exactly this size, so that a sanitizer sees every read past its end.
  const Bytes exact(bytes);
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

}  // namespace

int main(int argc, char** argv) {
  int mutantCount = 0;
  int inputCount = 0;
  Damage damage;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "-mutants" && i + 1 < argc) {
      mutantCount = std::stoi(argv[++i]);
      continue;
    }
    for (const fs::path& file : filesOf(argument)) {
      const Bytes bytes = bytesOf(file);
      runTarget(bytes);
      for (int mutant = 0; mutant < mutantCount; ++mutant) runTarget(damage.damaged(bytes));
      ++inputCount;
    }
  }
  std::printf("%d inputs, each with %d damaged copies\n", inputCount, mutantCount);
  return inputCount > 0 ? 0 : 1;
}
