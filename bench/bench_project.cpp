// Makes the projects that bench/compare measures: many plain traces, or gzipped ones.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/trace_generator.h"

namespace fs = std::filesystem;

namespace {

constexpr int distinctTraceCount = 50;  // the others are copies of these

/// A realistic trace with a fixed number of samples: instruments record on after the last base.
TraceContents traceOfSize(std::uint32_t seed, std::size_t sampleCount, int baseCount) {
  TraceContents trace = believableTrace(seed, baseCount);
  for (std::vector<int>& channel : trace.channels) {
    const std::size_t length = channel.size();
    if (length > sampleCount) throw std::runtime_error("too few samples for that many bases");
    channel.resize(sampleCount);
    for (std::size_t k = length; k < sampleCount; ++k) channel[k] = channel[k - length];
  }
  return trace;
}

/// The whole file. The caller's own calls equal the edited ones, since other programs read the
/// former.
std::string traceFile(const TraceContents& trace) {
  return trace.abif()
      .callerName("KB 1.4")
      .without("PBAS", 2)
      .without("PCON", 2)
      .entry("PBAS", 2, trace.bases)
      .entry("PCON", 2, std::string(trace.qualities.begin(), trace.qualities.end()))
      .otherEntries(100)
      .build();
}

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + path.string());
}

/// "trace00007.ab1": with five digits, names sort like numbers.
std::string nameOf(int number) {
  const std::string digits = std::to_string(number);
  return "trace" + std::string(5 - std::min<std::size_t>(digits.size(), 5), '0') + digits + ".ab1";
}

void makeProject(const fs::path& root, int fileCount, std::size_t sampleCount, int baseCount,
                 bool packed) {
  for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir"}) {
    fs::create_directories(root / name);
  }
  const fs::path chromats = root / "chromat_dir";
  const int distinct = std::min(fileCount, distinctTraceCount);
  for (int i = 0; i < distinct; ++i) {
    const auto seed = static_cast<std::uint32_t>(i + 1);
    const std::string bytes = traceFile(traceOfSize(seed, sampleCount, baseCount));
    for (int copy = i; copy < fileCount; copy += distinct) {
      writeFile(chromats / nameOf(copy), bytes);
    }
  }
  const std::string command = "gzip -n '" + chromats.string() + "'/*.ab1";
  if (packed && std::system(command.c_str()) != 0) throw std::runtime_error("gzip has failed");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::cerr << "usage: bench_project FOLDER FILES SAMPLES BASES plain|packed\n";
    return 2;
  }
  try {
    makeProject(argv[1], std::stoi(argv[2]), std::stoul(argv[3]), std::stoi(argv[4]),
                std::string(argv[5]) == "packed");
  } catch (const std::exception& problem) {
    std::cerr << "bench_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
