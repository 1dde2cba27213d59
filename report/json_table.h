#pragma once

#include <string>

#include "audit/sample_row.h"
#include "report/state_counts.h"

// The table as one JSON object, in pieces that follow each other: the start, the rows, the end.
// Bytes that are no UTF-8 are replaced. What is unknown is null.
namespace Quillet {

/// `project` is the folder of the project.
std::string jsonStart(const std::string& project);

/// One row; `isFirst` says that none stands before it.
std::string jsonRow(const SampleRow& row, bool isFirst);

std::string jsonEnd(const StateCounts& counts);

}  // namespace Quillet
