#pragma once

#include <string>
#include <string_view>
#include <vector>

// Rules about the names of a shard.
namespace Quillet {

/// Whether the converter takes a file of this name for a gzipped one. ".GZ" is no such ending.
bool isPackedName(std::string_view name);

/// The name that messages show: a final ".gz" is cut off, once.
std::string unpackedName(const std::string& name);

/// Which gzipped traces of a shard can be unpacked under their names without ".gz" and change
/// nothing else. `names` is in the converter's order; `listed` says that the run gets it as a list.
/// False for every name that is no packed one.
std::vector<bool> unpackableNames(const std::vector<std::string>& names, bool listed);

}  // namespace Quillet
