// Opens any bytes as a trace file. The seeds and the dictionary lead to ABIF files.

#include <cstddef>
#include <cstdint>

#include "fuzz/trace_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  checkTrace(bytes, count);
  return 0;
}
