#include "audit/impediments.h"

#include <algorithm>
#include <string_view>

#include "foundation/string.h"

namespace Quillet {

bool isTooLongForResult(const std::string& sample) {
  constexpr std::string_view suffix = ".phd.1";
  constexpr std::size_t longestName = 255;              // bytes
  const std::size_t nameStart = sample.rfind('/') + 1;  // 0 without a "/"
  return sample.size() - nameStart + suffix.size() > longestName;
}

bool isTornByShell(const std::string& path) {
  constexpr std::string_view special = "|&;<>()$`\\\"'";
  return std::any_of(path.begin(), path.end(), [&](char character) {
    return Tessaly::isWhiteSpace(character) || special.find(character) != std::string_view::npos;
  });
}

}  // namespace Quillet
