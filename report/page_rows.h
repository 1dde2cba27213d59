#pragma once

#include <string>

#include "audit/sample_row.h"

// The rows of a page: one JSON object for its script, in pieces that follow each other, the start,
// the rows with ",\n" between them, the end. Only ASCII and no "<", so that no value ends the
// element that it stands in. Bytes that are no UTF-8 are replaced. What is unknown is null.
namespace Quillet {

/// Version, project, states with their texts, and the names of the columns.
std::string pageRowsStart(const std::string& projectName, bool hasPictures);

/// The values of the columns, then `strip`, then whether the page holds a picture of the trace.
std::string pageRow(const SampleRow& row, const std::string& strip, bool hasPicture);

std::string pageRowsEnd();

}  // namespace Quillet
