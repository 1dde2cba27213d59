// Makes the project that biopython_test.py looks at: alike_project FOLDER. Two hundred ABIF traces
// whose calls numbered 1 and 2 are alike, since some programs read these and some those.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>

#include "tests/support/trace_generator.h"

namespace fs = std::filesystem;

namespace {

constexpr int traceCount = 200;

/// Lengths around the shortest read that is trimmed, and ordinary ones. Up to 4 calls would stand
/// in the directory for some programs.
int baseCountOf(int number) { return number < 45 ? number + 5 : 50 + 17 * (number - 45) % 850; }

TraceContents contentsOf(int number) {
  TraceContents trace =
      believableTrace(static_cast<std::uint32_t>(number + 1), baseCountOf(number));
  std::mt19937 engine(static_cast<std::uint32_t>(number + 1));
  if (number % 5 == 0) {
    for (int& quality : trace.qualities) quality = static_cast<int>(engine() % 94);
  }
  if (number % 5 == 1) {  // around the quality at which the running sum turns
    for (int& quality : trace.qualities) quality = 10 + static_cast<int>(engine() % 6);
  }
  const std::size_t middle = trace.qualities.size() / 2;
  if (number % 7 == 0) trace.qualities[middle] = 0;
  if (number % 11 == 0) trace.bases[middle] = 'N';
  if (number % 13 == 0) trace.bases[middle] = 'r';
  return trace;
}

void writeTrace(const fs::path& path, const TraceContents& trace) {
  std::ofstream stream(path, std::ios::binary);
  stream << trace.abif()
                .callerName("caller")
                .without("PBAS", 2)
                .without("PCON", 2)
                .entry("PBAS", 2, trace.bases)
                .entry("PCON", 2, std::string(trace.qualities.begin(), trace.qualities.end()))
                .build();
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + path.string());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: alike_project FOLDER\n";
    return 2;
  }
  try {
    const fs::path root = argv[1];
    for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir"}) {
      fs::create_directories(root / name);
    }
    for (int number = 0; number < traceCount; ++number) {
      writeTrace(root / "chromat_dir" / ("made" + std::to_string(1000 + number) + ".ab1"),
                 contentsOf(number));
    }
  } catch (const std::exception& problem) {
    std::cerr << "alike_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
