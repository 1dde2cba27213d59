#pragma once

#include <string>
#include <vector>

/// A file of 2 MiB that is something else than it claims.
struct HostileTrace {
  std::string name;  // the sample's name too
  std::string bytes;
  bool converted;  // whether it has a result
};

/// One of each kind, by the reader that they are meant for.
std::vector<HostileTrace> hostileTraces();
