#pragma once

#include <string>

#include "audit/sample_row.h"

// The table as tab-separated values: a header line and a line for each row, which a csv reader
// takes without quoting. What is unknown is empty.
namespace Quillet {

/// The names of the columns, with the line feed.
std::string tsvHeader();

/// One row, with the line feed. For a terminal all control characters are escaped.
std::string tsvLine(const SampleRow& row, bool forTerminal);

/// A mean quality with one digit after the point.
std::string meanQualityText(double meanQuality);

}  // namespace Quillet
