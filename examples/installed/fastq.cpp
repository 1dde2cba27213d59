// Prints the calls of traces as FASTQ: fastq TRACE...

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>

#include <quillet/trace/trace_file.h>

namespace {

/// FASTQ has one printable character for each quality: 0 is "!", the highest, 93, is "~".
std::string qualityLetters(const Quillet::BaseCalls& calls) {
  std::string letters;
  for (std::uint32_t i = 0; i < calls.count; ++i) {
    const int quality = std::min<int>(calls.qualities[i], 93);
    letters += static_cast<char>('!' + quality);
  }
  return letters;
}

bool printFastq(const char* path) {
  Quillet::TraceFile trace;
  if (!trace.open(path)) {
    std::cerr << "fastq: no trace: " << path << '\n';
    return false;
  }

  const Quillet::BaseCalls& calls = trace.content().calls;
  std::cout << '@' << path << '\n'
            << std::string_view(calls.bases.get(), calls.count) << "\n+\n"
            << qualityLetters(calls) << '\n';
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  bool printed = true;
  for (int i = 1; i < argc; ++i) printed = printFastq(argv[i]) && printed;
  return printed ? 0 : 1;
}
