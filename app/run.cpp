#include "app/run.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <string>
#include <vector>

#include "app/flags.h"
#include "app/freed_memory.h"
#include "app/project.h"
#include "app/resource_file.h"
#include "app/settings.h"

namespace Quillet {

namespace {

/// Whether one of the words equals one of the spellings.
bool asksFor(const std::vector<std::string>& words, std::initializer_list<const char*> spellings) {
  return std::find_first_of(words.begin(), words.end(), spellings.begin(), spellings.end()) !=
         words.end();
}

}  // namespace

void printHelp() {
  std::cerr << " flag               function"
               "\n ---------------    ----------------------------"
               "\n -dir       (-d)    set the data directory"
               "\n -help      (-h)    print this information"
               "\n -list      (-l)    set the chromat list file"
               "\n -overwrite (-o)    overwrite existing files"
               "\n -nostrip   (-s)    leave extensions intact"
               "\n -version           print Quillet version"
               "\n--------------------------------------------------------------\n"
            << std::endl;
}

void run(int argc, const char* const* argv) {
  Settings settings;
  // Deliberate: three blanks; scripts match this text.
  std::cerr << "\nQUILLET   Version " << settings.version << std::endl;

  std::vector<std::string> words;
  if (argc > 1) words.assign(argv + 1, argv + argc);
  if (asksFor(words, {"-version", "--version"})) {
    std::cerr << "Build " << settings.buildStamp << '\n' << std::endl;
    std::exit(0);
  }
  std::cerr << "--------------------------------------------------------------" << std::endl;
  if (asksFor(words, {"-h", "-help", "--help"})) {
    printHelp();
    std::exit(0);
  }

  keepFreedMemory();
  readResourceFile(settings);
  applyFlags(settings, words, "COMMAND LINE");
  Project project(settings);
  project.prepare();
  project.convertAll();
}

}  // namespace Quillet
