#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/report/converted_project.h"

// Faults that tests do to a converted project, with what a report must say of them.

/// The expected row of a trace, or of a result without one.
struct Outcome {
  std::string state;
  std::string detail;
};

/// What a fault does, and what the report must say then.
struct Fault {
  std::string title;
  std::function<void(const ConvertedProject&)> inject;
  std::map<std::string, Outcome> changed = {};      // traces whose file is as before
  std::map<std::string, Outcome> renewed = {};      // traces that are new or have another content
  std::vector<std::string> gone = {};               // traces
  std::map<std::string, std::string> orphans = {};  // details by sample
};

/// What is done to results of the converter.
std::vector<Fault> resultFaults();

/// What the converter carries over from another trace, by runs of the converter.
std::vector<Fault> borrowedFaults();

/// What is done to traces after the run.
std::vector<Fault> traceFaults();

/// The name of a trace without its endings.
std::string sampleOf(const std::string& trace);
