// Prints the figures of calls for comparison with other programs: for every line of qualities on
// standard input, blank-separated numbers, a line with mean quality, q20, trim start and trim end.

#include <cstdint>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "audit/call_figures.h"

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream numbers(line);
    std::vector<std::uint8_t> qualities;
    for (int quality = 0; numbers >> quality;) {
      qualities.push_back(static_cast<std::uint8_t>(quality));
    }
    const Quillet::CallFigures figures =
        Quillet::figuresOf(std::string(qualities.size(), 'A'), qualities);
    std::printf("%.1f %u %u %u\n", figures.meanQuality, figures.q20, figures.trimStart,
                figures.trimEnd);
  }
  return 0;
}
