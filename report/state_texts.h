#pragma once

#include "audit/sample_row.h"

namespace Quillet {

/// What a state means for the user: there is a result that is not to be trusted, none, none yet or
/// not of this name, or a whole one.
enum class Severity { untrusted, missing, waiting, whole };
Severity severityOf(SampleState state);

/// "untrusted" and so on.
const char* textOf(Severity severity);

/// What happened, and what to do.
const char* adviceOf(SampleState state);

}  // namespace Quillet
