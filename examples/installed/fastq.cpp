// Prints the calls of traces as FASTQ: fastq TRACE...

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>

#include <quillet/foundation/string.h>
#include <quillet/foundation/vector.h>
#include <quillet/trace/trace_file.h>

namespace {

/// FASTQ has one printable character for each quality: 0 is "!", the highest, 93, is "~".
std::string qualityLetters(const Tessaly::String& qualities, std::int32_t baseCount) {
  std::string letters(static_cast<std::size_t>(baseCount), '!');
  for (std::int32_t i = 0; i < std::min(baseCount, qualities.length()); ++i) {
    const int quality = static_cast<unsigned char>(qualities.text()[i]);
    letters[static_cast<std::size_t>(i)] = static_cast<char>('!' + std::min(quality, 93));
  }
  return letters;
}

bool printFastq(const char* path) {
  Quillet::TraceFile trace;
  Tessaly::String name(path);
  if (!trace.open(name)) {
    std::cerr << "fastq: no trace: " << path << '\n';
    return false;
  }

  Tessaly::String bases;
  Tessaly::String qualities;
  Tessaly::Vector<std::int32_t> peaks;
  trace.getBaseCalls(bases, qualities, peaks);
  std::cout << '@' << path << '\n'
            << bases << "\n+\n"
            << qualityLetters(qualities, bases.length()) << '\n';
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  bool printed = true;
  for (int i = 1; i < argc; ++i) printed = printFastq(argv[i]) && printed;
  return printed ? 0 : 1;
}
