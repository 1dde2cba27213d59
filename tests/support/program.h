#pragma once

#include <map>
#include <string>
#include <vector>

/// Exit status and output of one run of a program.
struct ProgramResult {
  int status = -1;  // exit status; 128 + signal number when a signal ended it
  std::string out;
  std::string err;
};

/// One run of the built quillet in a fixed environment.
///
/// The working directory is `folder`, an absolute path. The variables are PATH, LC_ALL=C, TZ=UTC,
/// and PWD and HOME with `folder`. `environment` adds or replaces variables, `unset` removes some.
struct ProgramRun {
  std::string folder;
  std::vector<std::string> arguments = {};
  std::string input = {};  // standard input
  std::map<std::string, std::string> environment = {};
  std::vector<std::string> unset = {};  // such as "PWD"
};

ProgramResult runQuillet(const ProgramRun& run);

/// Runs any program, found through PATH, in the same environment.
ProgramResult runProgram(const std::string& program, const ProgramRun& run);

/// The first lines that quillet prints: the banner and a line of hyphens.
std::string banner();
