#pragma once

#include "audit/sample_row.h"

namespace Quillet {

/// What a state means for the user: "untrusted", "missing", "waiting" or "whole".
const char* severityOf(SampleState state);

/// What happened, and what to do.
const char* adviceOf(SampleState state);

}  // namespace Quillet
