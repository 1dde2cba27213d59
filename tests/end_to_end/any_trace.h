#pragma once

#include <string>

#include "tests/support/trace_builder.h"

// Traces for tests that are about something else.

inline std::string anyTrace() { return AbifBuilder().build(); }

/// What every run over `anyTrace` writes between BEGIN_DNA and END_DNA.
inline constexpr const char* anyBases = "A 40 1\nC 40 4\nG 40 7\nT 40 10\n";

/// A trace without base calls: its .phd.1 shows those of the file before it.
inline std::string traceWithoutCalls() { return AbifBuilder().without("PBAS", 1).build(); }
