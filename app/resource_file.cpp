#include "app/resource_file.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "app/flags.h"
#include "app/parse_error.h"
#include "foundation/directory.h"
#include "foundation/string.h"

namespace Quillet {

namespace {

constexpr const char* resourceFileName = ".quilletrc";
constexpr const char* flagSource = ".quilletrc file";

/// Opens the first resource file and sets `path` to its name; false when there is none.
bool openResourceFile(std::ifstream& stream, Tessaly::String& path) {
  path = Tessaly::Directory::currentDirectory() + resourceFileName;
  stream.open(path.text());
  if (stream.is_open()) return true;

  // Deliberate: without HOME this is the bare name again; with an empty HOME it is in the root
  // directory.
  path = Tessaly::Directory::homeDirectory() + resourceFileName;
  stream.open(path.text());
  if (stream.is_open()) return true;

  // Deliberate: the variable is a prefix; no "/" is added after it.
  const char* prefix = std::getenv("TESSALY_PATH");
  if (prefix == nullptr || *prefix == '\0') return false;
  path = Tessaly::String(prefix) + resourceFileName;
  stream.open(path.text());
  return stream.is_open();
}

/// Reads the next word of the line, which ends at its first zero byte; false when there is none.
bool takeWord(std::istringstream& line, std::string& word) {
  if (!(line >> word)) return false;
  word.resize(std::strlen(word.c_str()));
  return true;
}

/// Applies the lines of one resource file and collects its flags.
class ResourceLines {
 public:
  ResourceLines(Settings& settings, const Tessaly::String& path)
      : settings_(settings), path_(path.text()) {}

  void apply(const std::string& line) {
    ++lineNumber_;
    std::istringstream words(line);
    std::string keyword;
    if (!takeWord(words, keyword)) return;
    if (keyword == "flag") {
      for (std::string word; takeWord(words, word);) {
        flags_.push_back(word);
      }
    } else if (keyword == "chromatdir") {
      setDirectory(settings_.chromatDir, keyword, words);
    } else if (keyword == "phddir") {
      setDirectory(settings_.phdDir, keyword, words);
    } else if (keyword == "polydir") {
      setDirectory(settings_.polyDir, keyword, words);
    } else {
      // Deliberate: there are no comments; "#" is an invalid option.
      throw Tessaly::ParseError(path_, lineNumber_, "invalid option: " + keyword);
    }
  }

  const std::vector<std::string>& flags() const { return flags_; }

 private:
  void setDirectory(std::string& directory, const std::string& keyword,
                    std::istringstream& words) const {
    std::string word;
    if (!takeWord(words, word)) {
      throw Tessaly::ParseError(path_, lineNumber_, "`" + keyword + "' requires an argument");
    }
    directory = word;
    ensureTrailingSlash(directory);
  }

  Settings& settings_;
  std::string path_;
  std::int32_t lineNumber_ = 0;
  std::vector<std::string> flags_;
};

/// Reads the file from the open stream to its end.
void applyResourceFile(std::ifstream& stream, const Tessaly::String& path, Settings& settings) {
  ResourceLines lines(settings, path);
  for (std::string line; std::getline(stream, line);) lines.apply(line);
  stream.close();

  if (!lines.flags().empty()) applyFlags(settings, lines.flags(), flagSource);
}

}  // namespace

void readResourceFile(Settings& settings) {
  std::ifstream stream;
  Tessaly::String path;
  if (!openResourceFile(stream, path)) return;
  std::cerr << "Reading file " << path << '\n';
  applyResourceFile(stream, path, settings);
}

void readResourceFileSilently(Settings& settings) {
  std::ifstream stream;
  Tessaly::String path;
  if (openResourceFile(stream, path)) applyResourceFile(stream, path, settings);
}

}  // namespace Quillet
