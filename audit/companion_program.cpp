#include "audit/companion_program.h"

#include <cstddef>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <map>
#include <unistd.h>

#include "app/flags.h"
#include "app/resource_file.h"
#include "foundation/directory.h"

namespace Quillet {

namespace {

constexpr int failed = 1;  // exit status

/// Gives a closed standard stream a descriptor that fails.
void fillStandardStreams() {
  while (true) {
    const int descriptor = open("/dev/null", O_RDONLY);
    if (descriptor > STDERR_FILENO) close(descriptor);
    if (descriptor < 0 || descriptor > STDERR_FILENO) return;
  }
}

int complain(const std::string& program, const std::string& problem) {
  std::cerr << program << ": " << problem << std::endl;
  return failed;
}

}  // namespace

std::vector<std::string> withUsualFlags(std::vector<std::string> words,
                                        const std::function<FlagKind(const std::string&)>& kindOf) {
  static const std::map<std::string, std::string> spellings{
      {"-dir", "-d"},      {"-list", "-l"},
      {"-nostrip", "-s"},  {"-overwrite", "--overwrite"},  // -o can mean another thing
      {"-help", "--help"}, {"-version", "--version"}};
  for (std::size_t index = 0; index < words.size(); ++index) {
    std::string& word = words[index];
    const auto spelling = spellings.find(word);
    if (spelling != spellings.end()) {
      const bool isKnown = kindOf(spelling->second) != FlagKind::unknown;
      if (isKnown) {
        word = spelling->second;
      } else {
        word.insert(0, 1, '-');
      }
    }
    if (kindOf(word) == FlagKind::withValue) ++index;
  }
  return words;
}

Settings settingsOfRun(const std::vector<std::string>& projectFlags) {
  Settings settings;
  readResourceFileSilently(settings);
  applyFlags(settings, projectFlags, "COMMAND LINE");
  return settings;
}

int runCompanion(const std::string& program, int argc, const char* const* argv,
                 const std::function<int(const std::vector<std::string>& words)>& body) {
  fillStandardStreams();
  try {
    std::vector<std::string> words;
    if (argc > 1) words.assign(argv + 1, argv + argc);
    return body(words);
  } catch (const UsageError& error) {
    return complain(program, error.what() + ("\nTry `" + program + " --help'."));
  } catch (const std::exception& exception) {
    return complain(program, exception.what());
  } catch (const Tessaly::Directory::Exception& exception) {
    return complain(program, std::string(exception.message()) + ' ' + exception.path());
  } catch (const char* text) {
    return complain(program, text);
  } catch (int) {
    return failed;  // whoever throws a number has printed a message
  } catch (...) {
    return complain(program, "unexpected exception");
  }
}

}  // namespace Quillet
