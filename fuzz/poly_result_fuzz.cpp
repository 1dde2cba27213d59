// The reader of .poly files on any bytes: what it calls whole has one number of lines, and is not
// whole without its last byte.

#include "audit/poly_result.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "fuzz/scratch_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  using Quillet::isWholePoly;
  const std::string_view text(reinterpret_cast<const char*>(bytes), count);
  const bool isWhole = isWholePoly(text, std::nullopt);

  // A line has at least 24 bytes, so this many are more than there can be.
  std::size_t fitting = 0;
  for (std::size_t lines = 0; lines <= count / 24 + 1; ++lines) {
    fitting += isWholePoly(text, lines) ? 1 : 0;
  }
  require(fitting == (isWhole ? 1U : 0U), "a whole text has one number of lines, another none");
  if (isWhole) {
    require(text.ends_with('\n'), "the last line ends");
    require(!isWholePoly(text.substr(0, count - 1), std::nullopt), "a cut text is not whole");
  }
  return 0;
}
