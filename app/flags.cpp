#include "app/flags.h"

#include <cstddef>

#include "app/parse_error.h"

namespace Quillet {

namespace {

/// Moves `index` from a flag to the next word and returns that word, even when it begins with "-".
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
      settings.listFile_.clear();  // Deliberate: cleared even when the argument is missing.
      settings.listFile_ = argumentOf(words, index, source);
    } else if (word == "-o" || word == "-overwrite") {
      settings.overwrite = true;
    } else if (word == "-s" || word == "-nostrip") {
      settings.stripExtensions = false;
    } else if (word == "-h" || word == "-help" || word == "--help" || word == "-version" ||
               word == "--version") {
      // Nothing to do: run() has answered them; in the resource file they are ignored.
    } else {
      throw Tessaly::ParseError(source, 0, "invalid flag `" + word + "'");
    }
  }
}

}  // namespace Quillet
