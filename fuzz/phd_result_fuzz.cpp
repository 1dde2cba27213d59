// The reader of .phd.1 files on any bytes: what it calls whole it splits into parts that make up
// the text again.

#include "audit/phd_result.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/scratch_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), count);
  const auto parts = Quillet::splitPhd(text);
  if (!parts) return 0;

  require(parts->header.ends_with("\nBEGIN_DNA\n"), "the header ends with its last line");
  const Quillet::PhdResult result = Quillet::valuesOf(*parts);
  require(result.bases.size() == parts->baseCount, "every line has a base");
  require(result.qualities.size() == parts->baseCount, "and a quality");
  require(result.positions.size() == parts->baseCount, "and a position");

  std::string again(parts->header);
  std::string_view lines = parts->lines;
  for (Quillet::PhdLine line; Quillet::takePhdLine(lines, line);) {
    again += line.base;
    again.append(" ").append(line.quality).append(" ").append(line.position).append("\n");
  }
  require(lines.empty(), "nothing but lines of bases stands between");
  again += "END_DNA\n";
  require(text.starts_with(again), "the parts make up the text");
  require(Quillet::isPhdEnding(text.substr(again.size())), "and the ending follows");
  require(!Quillet::splitPhd(text.substr(0, again.size())), "without it the text is not whole");
  return 0;
}
