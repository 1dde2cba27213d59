#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quillet {

/// What a .phd.1 file says.
struct PhdResult {
  std::string header;  // everything up to and including the last line BEGIN_DNA
  std::string bases;   // one byte each, of any kind
  std::vector<std::int32_t> qualities;
  std::vector<std::int32_t> positions;  // 0-based sample indices
};

/// Reads the text of a .phd.1; none when the file is not whole. Blocks that other tools add after
/// END_DNA are passed over.
std::optional<PhdResult> readPhdResult(std::string_view text);

}  // namespace Quillet
