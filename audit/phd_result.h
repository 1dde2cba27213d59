#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quillet {

/// What a .phd.1 says of its bases.
struct PhdResult {
  std::string bases;  // one byte each, of any kind
  std::vector<std::int32_t> qualities;
  std::vector<std::int32_t> positions;  // 0-based sample indices
};

/// The parts of a whole .phd.1, borrowed from its text.
struct PhdParts {
  std::string_view header;  // everything up to and including the last line BEGIN_DNA
  std::string_view lines;   // those of the bases
  std::size_t baseCount = 0;
};

/// Splits the text of a .phd.1; none when the file is not whole. Blocks that other tools add after
/// END_DNA are passed over.
std::optional<PhdParts> splitPhd(std::string_view text);

/// The values of its lines. A number that does not fit becomes the nearest one that does.
PhdResult valuesOf(const PhdParts& parts);

/// The line of one base; the numbers as they are spelled.
struct PhdLine {
  char base = 0;
  std::string_view quality;
  std::string_view position;
};

/// Takes the first line off `lines`; false, with `lines` as they were, when it is no base's.
bool takePhdLine(std::string_view& lines, PhdLine& line);

/// Whether a text is what may follow the line END_DNA: END_SEQUENCE and, before and after it, any
/// number of blocks of other tools (BEGIN_TAG to END_TAG, WR{ to }) and empty lines.
bool isPhdEnding(std::string_view text);

}  // namespace Quillet
