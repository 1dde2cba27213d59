#pragma once

#include <nlohmann/json_fwd.hpp>

#include "audit/sample_row.h"

namespace Quillet {

/// The values of a row as JSON, by the names of their columns and in the order of the columns. What
/// is unknown is null.
nlohmann::ordered_json rowValues(const SampleRow& row);

}  // namespace Quillet
