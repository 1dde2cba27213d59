#pragma once

#include <string>
#include <string_view>
#include <vector>

// What the converter prints in a run over a shard, cut into pieces.
namespace Quillet {

/// What the converter says of one name.
struct NameMessages {
  std::string text;         // all of it: gunzip's complaints, then the converter's message
  bool hasMessage = false;  // the converter's own message, that it skips the trace, is in it
};

struct RunMessages {
  std::vector<NameMessages> byName;  // one for each name
  /// What speaks of no trace: the shell, or gunzip of its own output. Traces may have been read in
  /// part then, without another sign. Warnings about the environment are none.
  std::string trouble;
};

/// The converter's run that printed a text.
struct PrintedRun {
  std::string resourceFile;        // path of the one that it read
  std::string chromatPath;         // of its traces; ends in "/"
  std::string shownChromatPath;    // of the project's; stands in the messages instead
  std::vector<std::string> names;  // in its order
};

/// Cuts what a run printed to both its streams. Banner, resource file line and percent meter are
/// left out. What can not be told apart goes to a name beside it.
RunMessages cutMessages(const PrintedRun& run, std::string_view printed);

}  // namespace Quillet
