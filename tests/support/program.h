#pragma once

#include <map>
#include <string>
#include <vector>

/// How one run of a program ended and what it printed.
struct ProgramResult {
  int status = -1;  // exit status; 128 + signal number when a signal ended it
  std::string out;
  std::string err;
};

/// One run of the built quillet in a fixed world.
///
/// The environment holds PATH, LC_ALL=C, TZ=UTC and nothing else but what `environment` adds; PWD
/// and HOME are `folder` unless it says otherwise. `folder` is an absolute path.
struct ProgramRun {
  std::string folder;
  std::vector<std::string> arguments = {};
  std::string input = {};  // standard input
  std::map<std::string, std::string> environment = {};
  std::vector<std::string> unset = {};  // variables to leave out, such as "PWD"
};

ProgramResult runQuillet(const ProgramRun& run);

/// Runs any program, found along PATH, in the same world.
ProgramResult runProgram(const std::string& program, const ProgramRun& run);

/// What quillet prints before anything else: the banner and the line of hyphens.
std::string banner();
