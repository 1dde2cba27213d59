#pragma once

#include <string>

#include "tests/support/trace_builder.h"

// Traces for tests in which the content of a trace does not matter.

inline std::string anyTrace() { return AbifBuilder().build(); }

/// The lines between BEGIN_DNA and END_DNA for `anyTrace`.
inline constexpr const char* anyBases = "A 40 1\nC 40 4\nG 40 7\nT 40 10\n";

/// A trace without base calls: its .phd.1 has the calls of the file before it.
inline std::string traceWithoutCalls() { return AbifBuilder().without("PBAS", 1).build(); }
