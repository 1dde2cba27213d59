#pragma once

#include <string>
#include <string_view>
#include <vector>

// Rules about the names of a shard.
namespace Quillet {

/// Whether the converter takes the name for that of a gzipped trace. ".gz" alone is none.
bool isPackedName(std::string_view name);

/// The name without its final ".gz"; any other name as it is.
std::string unpackedName(const std::string& name);

/// Which gzipped traces of a shard can be unpacked under their names without ".gz" and change
/// nothing else. `names` is in the converter's order; `listed` says that the run gets it as a list.
/// False for every name that is no packed one.
std::vector<bool> unpackableNames(const std::vector<std::string>& names, bool listed);

}  // namespace Quillet
