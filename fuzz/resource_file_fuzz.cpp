// Reads any bytes as a resource file. After a line "%%" they are words of the command line, one on
// each line. Compares settings and errors with a plain model of the rules.

#include "app/resource_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "app/flags.h"
#include "app/settings.h"
#include "fuzz/scratch_file.h"

namespace {

using Words = std::vector<std::string>;

Words split(const std::string& text, const std::string& separators) {
  Words words;
  std::string word;
  for (const char character : text + separators[0]) {
    if (separators.find(character) == std::string::npos) {
      word += character;
    } else if (!word.empty()) {
      words.push_back(word);
      word.clear();
    }
  }
  return words;
}

/// The lines of a text. There is no empty line after the last line feed.
Words linesOf(const std::string& text) {
  Words lines;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

std::string asDirectory(const std::string& word) {
  return word.empty() || word.back() == '/' ? word : word + '/';
}

/// A plain model of the rules. `error` is the text that the user sees, empty without an error.
struct Model {
  Quillet::Settings settings;
  std::string error;

  void applyFlags(const Words& words, const std::string& source) {
    const std::string start = "in " + source + ": ";
    for (std::size_t i = 0; i < words.size() && error.empty(); ++i) {
      const std::string& word = words[i];
      const bool isRoot = word == "-d" || word == "-dir";
      const bool isList = word == "-l" || word == "-list";
      if (isList) settings.listFile_.clear();
      if ((isRoot || isList) && i + 1 == words.size()) {
        error = start + "`" + word + "' requires an argument.";
      } else if (isRoot) {
        settings.dataDir = asDirectory(words[++i]);
      } else if (isList) {
        settings.listFile_ = words[++i];
      } else if (word == "-o" || word == "-overwrite") {
        settings.overwrite = true;
      } else if (word == "-s" || word == "-nostrip") {
        settings.stripExtensions = false;
      } else if (word != "-h" && word != "-help" && word != "--help" && word != "-version" &&
                 word != "--version") {
        error = start + "invalid flag `" + word + "'";
      }
    }
  }

  void applyFile(const std::string& path, const std::string& text) {
    Words flags;
    int lineNumber = 0;
    for (const std::string& line : linesOf(text)) {
      const std::string start = "in " + path + "line " + std::to_string(++lineNumber) + ": ";
      Words words = split(line, " \t\v\f\r");
      for (std::string& word : words) word = word.substr(0, word.find('\0'));
      if (words.empty()) continue;
      std::string* const directory = words[0] == "chromatdir" ? &settings.chromatDir
                                     : words[0] == "phddir"   ? &settings.phdDir
                                     : words[0] == "polydir"  ? &settings.polyDir
                                                              : nullptr;
      if (words[0] == "flag") {
        flags.insert(flags.end(), words.begin() + 1, words.end());
      } else if (directory == nullptr) {
        error = start + "invalid option: " + words[0];
      } else if (words.size() == 1) {
        error = start + "`" + words[0] + "' requires an argument";
      } else {
        *directory = asDirectory(words[1]);
      }
      if (!error.empty()) return;
    }
    applyFlags(flags, ".quilletrc file");
  }
};

/// Collects the standard error stream while it lives.
class CaughtStderr {
 public:
  CaughtStderr() : former_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~CaughtStderr() { std::cerr.rdbuf(former_); }
  CaughtStderr(const CaughtStderr&) = delete;
  CaughtStderr& operator=(const CaughtStderr&) = delete;
  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* former_;
};

template <typename Action>
std::string errorOf(Action action) {
  try {
    action();
  } catch (const std::exception& problem) {
    return problem.what();
  }
  return {};
}

/// Compares up to the first zero byte of `expected`: what() ends there.
bool sameError(const std::string& error, const std::string& expected) {
  return error == expected.c_str();
}

bool sameSettings(const Quillet::Settings& left, const Quillet::Settings& right) {
  return left.version == right.version && left.buildStamp == right.buildStamp &&
         left.dataDir == right.dataDir && left.chromatDir == right.chromatDir &&
         left.editDir == right.editDir && left.phdDir == right.phdDir &&
         left.polyDir == right.polyDir && left.listFile_ == right.listFile_ &&
         left.overwrite == right.overwrite && left.stripExtensions == right.stripExtensions;
}

void check(const ScratchFile& file, const std::string& text, const Words& commandLine) {
  Quillet::Settings settings;
  Model model;

  const CaughtStderr caught;
  const std::string fileError = errorOf([&] { Quillet::readResourceFile(settings); });
  model.applyFile(file.path(), text);
  require(sameError(fileError, model.error), "the resource file's error is the expected one");
  require(sameSettings(settings, model.settings), "the resource file sets what it should");
  require(caught.text() == "Reading file " + file.path() + "\n", "the file is named, once");
  if (!model.error.empty()) return;

  const std::string flagError =
      errorOf([&] { Quillet::applyFlags(settings, commandLine, "COMMAND LINE"); });
  model.applyFlags(commandLine, "COMMAND LINE");
  require(sameError(flagError, model.error), "the command line's error is the expected one");
  require(sameSettings(settings, model.settings), "the command line sets what it should");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  static const ScratchFile file(".quilletrc");
  setenv("PWD", file.folder().c_str(), 1);

  const std::string input(reinterpret_cast<const char*>(bytes), count);
  const std::string mark = "\n%%\n";
  const std::size_t end = input.find(mark);
  const std::string text = end == std::string::npos ? input : input.substr(0, end + 1);
  const Words words = end == std::string::npos ? Words() : linesOf(input.substr(end + mark.size()));
  file.hold(bytes, text.size());
  check(file, text, words);
  return 0;
}
