#include "app/flags.h"

#include <cstddef>

#include "app/parse_error.h"

namespace Quillet {

namespace {

/// The word behind the flag at `index`, which moves on to it; it may itself begin with "-".
const std::string& argumentOf(const std::vector<std::string>& words, std::size_t& index,
                              const std::string& source) {
  if (index + 1 == words.size()) {
    throw Tessaly::ParseError(source, 0, "`" + words[index] + "' requires an argument.");
  }
  return words[++index];
}

}  // namespace

void applyFlags(Settings& settings, const std::vector<std::string>& words,
                const std::string& source) {
  for (std::size_t index = 0; index < words.size(); ++index) {
    const std::string& word = words[index];
    if (word == "-d" || word == "-dir") {
      settings.dataDir = argumentOf(words, index, source);
      ensureTrailingSlash(settings.dataDir);
    } else if (word == "-l" || word == "-list") {
      settings.listFile_.clear();  // Deliberate: also where the argument turns out to be missing.
      settings.listFile_ = argumentOf(words, index, source);
    } else if (word == "-o" || word == "-overwrite") {
      settings.overwrite = true;
    } else if (word == "-s" || word == "-nostrip") {
      settings.stripExtensions = false;
    } else if (word == "-h" || word == "-help" || word == "--help" || word == "-version" ||
               word == "--version") {
      // Answered before the flags are applied; accepted here for the resource file's sake.
    } else {
      throw Tessaly::ParseError(source, 0, "invalid flag `" + word + "'");
    }
  }
}

}  // namespace Quillet
