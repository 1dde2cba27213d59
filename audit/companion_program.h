#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/settings.h"

// What every companion program does around its own work.
namespace Quillet {

/// A wrong command line.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a parser knows of a word.
enum class FlagKind { unknown, alone, withValue };

/// The words with the converter's long flags (-dir, -list, -nostrip, -overwrite, -help, -version)
/// under the short or usual names (--overwrite, --help, --version). One that the parser does not
/// know gets a second "-", so that it is not taken for short flags. A word that is the value of the
/// flag before it stays as it is.
std::vector<std::string> withUsualFlags(std::vector<std::string> words,
                                        const std::function<FlagKind(const std::string&)>& kindOf);

/// The settings that the converter would have here with these flags, which are in its own words.
/// Throws what reading its resource file and its flags throw.
Settings settingsOfRun(const std::vector<std::string>& projectFlags);

/// One run of a program: its exit status is that of `body`, which gets the words after the
/// program's own name. What it throws becomes a message, after `program`, and status 1. A standard
/// stream that is closed gets a descriptor that fails first, so that no file takes its number.
int runCompanion(const std::string& program, int argc, const char* const* argv,
                 const std::function<int(const std::vector<std::string>& words)>& body);

}  // namespace Quillet
