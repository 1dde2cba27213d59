#include "shards/run_messages.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "shards/shard_names.h"

namespace Quillet {

namespace {

constexpr std::string_view messageEnd = " - skipping.\n";
constexpr std::string_view messageStarts[] = {"ERROR: invalid trace file ",
                                              "Warning: missing quality values in trace file "};

/// Takes `prefix` off the text; false, with the text as it was, when it does not begin so.
bool take(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// Takes a line with its line feed, or what is left.
std::string_view takeLine(std::string_view& text) {
  const std::size_t lineFeed = text.find('\n');
  const std::string_view line = text.substr(0, lineFeed == text.npos ? lineFeed : lineFeed + 1);
  text.remove_prefix(line.size());
  return line;
}

/// Passes over what a run prints before the meter.
void passOverOpening(std::string_view& text, const std::string& resourceFile) {
  if (take(text, "\nQUILLET   Version ")) takeLine(text);
  take(text, std::string(62, '-') + '\n');
  take(text, "Reading file " + resourceFile + '\n');
}

/// Whether a line is one of the meter's: a percentage in four places or more.
bool isMeterLine(std::string_view line) {
  constexpr std::string_view end = "% done\n";
  constexpr std::size_t width = 4;
  if (!line.ends_with(end) || line.size() < width + end.size()) return false;
  std::string_view number = line.substr(0, line.size() - end.size());
  number.remove_prefix(std::min(number.find_first_not_of(' '), number.size()));
  return !number.empty() && number.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Whether a line only warns of a setting: gunzip of its variable GZIP, the shell of a locale that
/// the system does not have. Neither changes what is read.
bool isWarning(std::string_view line) {
  return line.starts_with("gzip: warning: ") || line.find(": warning: setlocale: ") != line.npos;
}

/// Cuts a text and gives each piece to its name.
class Cutter {
 public:
  explicit Cutter(const PrintedRun& run)
      : run_(run),
        messages_{.byName = std::vector<NameMessages>(run.names.size()), .trouble = {}} {}

  RunMessages cut(std::string_view text) {
    while (!text.empty()) {
      if (takeMessage(text)) continue;
      const std::string_view line = takeLine(text);
      if (isMeterLine(line)) {
        giveOthers();
      } else {
        others_ += line;
        const bool namesTrace = line.find(run_.chromatPath) != std::string_view::npos;
        if (!namesTrace && line != "\n" && !isWarning(line)) messages_.trouble += line;
      }
    }
    giveOthers();
    return std::move(messages_);
  }

 private:
  /// Takes one of the converter's messages. A name may hold line feeds and even another message's
  /// end, but no "/", and between two messages there always is one. So the name ends with the last
  /// possible end before the next "/".
  bool takeMessage(std::string_view& text) {
    for (const std::string_view start : messageStarts) {
      std::string_view rest = text;
      if (!take(rest, start) || !take(rest, run_.chromatPath)) continue;
      const std::size_t length = rest.substr(0, rest.find('/')).rfind(messageEnd);
      if (length == std::string_view::npos) continue;
      const std::string_view name = rest.substr(0, length);
      give(name, std::string(start).append(run_.shownChromatPath).append(name).append(messageEnd));
      rest.remove_prefix(length + messageEnd.size());
      text = rest;
      return true;
    }
    return false;
  }

  void give(std::string_view shownName, const std::string& message) {
    giveOthers();
    std::size_t index = next_;
    while (index < run_.names.size() && unpackedName(run_.names[index]) != shownName) ++index;
    if (index == run_.names.size()) {  // nothing that the converter prints
      others_ = message;
      giveOthers();
      return;
    }
    messages_.byName[index].text += message;
    messages_.byName[index].hasMessage = true;
    next_ = index + 1;
  }

  /// Gives what others have printed, which is gunzip, to the name that it speaks of.
  void giveOthers() {
    if (others_.empty() || run_.names.empty()) return;
    std::size_t index = next_;
    if (others_.find(run_.chromatPath) != std::string::npos) {
      while (index < run_.names.size() && !speaksOf(run_.names[index])) ++index;
      if (index < run_.names.size()) next_ = index;
    }
    messages_.byName[std::min(next_, run_.names.size() - 1)].text +=
        shown(std::exchange(others_, {}));
  }

  bool speaksOf(const std::string& name) const {
    for (const char* end : {":", " ", ".gz:", ".gz "}) {
      if (others_.find(run_.chromatPath + name + end) != std::string::npos) return true;
    }
    return false;
  }

  std::string shown(std::string text) const {
    for (std::size_t at = 0; (at = text.find(run_.chromatPath, at)) != std::string::npos;
         at += run_.shownChromatPath.size()) {
      text.replace(at, run_.chromatPath.size(), run_.shownChromatPath);
    }
    return text;
  }

  const PrintedRun& run_;
  RunMessages messages_;
  std::size_t next_ = 0;  // first name that the next piece can belong to
  std::string others_;    // pieces that are no messages of the converter
};

}  // namespace

RunMessages cutMessages(const PrintedRun& run, std::string_view printed) {
  passOverOpening(printed, run.resourceFile);
  return Cutter(run).cut(printed);
}

}  // namespace Quillet
