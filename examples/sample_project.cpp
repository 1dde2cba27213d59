// Makes the project that tools/demo converts: realistic traces, every third one gzipped. With
// --with-bad-traces it adds two that Quillet skips: `doubtful.ab1` has no qualities for some bases,
// `damaged.ab1` is cut.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "examples/project_files.h"
#include "tests/support/trace_generator.h"

namespace fs = std::filesystem;

namespace {

/// The bytes of an ABIF file, with further directory entries like those of an instrument.
std::string traceFile(const TraceContents& contents) {
  return contents.abif().callerName("KB 1.4").otherEntries(100).build();
}

/// Makes the four folders under `root` and puts `traceCount` traces into `chromat_dir`.
void makeProject(const fs::path& root, int traceCount) {
  makeProjectFolders(root);
  const fs::path chromats = root / "chromat_dir";
  for (int i = 1; i <= traceCount; ++i) {
    const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
    const fs::path file = chromats / ("clone" + number + ".ab1");
    const auto seed = static_cast<std::uint32_t>(i);
    writeFile(file, traceFile(believableTrace(seed, 600 + (i * 137) % 301)));
    if (i % 3 == 0 && std::system(("gzip -f -n '" + file.string() + "'").c_str()) != 0) {
      throw std::runtime_error("can not gzip " + file.string());
    }
  }
}

/// Adds the two traces that Quillet skips.
void addBadTraces(const fs::path& root) {
  const fs::path chromats = root / "chromat_dir";
  writeFile(chromats / "doubtful.ab1", traceFile(doubtfulTrace(1001, 700)));
  writeFile(chromats / "damaged.ab1", traceFile(believableTrace(1002, 650)).substr(0, 3000));
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  const bool withBadTraces = std::erase(words, "--with-bad-traces") > 0;
  if (words.empty() || words.size() > 2) {
    std::cerr << "usage: sample_project [--with-bad-traces] FOLDER [NUMBER OF TRACES]\n";
    return 2;
  }
  try {
    makeProject(words[0], words.size() == 2 ? std::stoi(words[1]) : 12);
    if (withBadTraces) {
      addBadTraces(words[0]);
    }
  } catch (const std::exception& problem) {
    std::cerr << "sample_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
