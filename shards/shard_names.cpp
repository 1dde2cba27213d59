#include "shards/shard_names.h"

#include <cstddef>
#include <unordered_set>

namespace Quillet {

namespace {

constexpr std::string_view packedSuffix = ".gz";

}  // namespace

bool isPackedName(std::string_view name) { return name.ends_with(packedSuffix); }

std::string unpackedName(const std::string& name) {
  return isPackedName(name) ? name.substr(0, name.size() - packedSuffix.size()) : name;
}

std::vector<bool> unpackableNames(const std::vector<std::string>& names, bool listed) {
  std::unordered_set<std::string_view> known;
  if (listed) known.insert(names.begin(), names.end());

  std::vector<bool> unpackable(names.size());
  for (std::size_t index = 0; index < names.size(); ++index) {
    if (!isPackedName(names[index])) continue;
    const std::string unpacked = unpackedName(names[index]);
    // The converter would cut another ".gz" off the sample and off the message; no file has an
    // empty name.
    if (isPackedName(unpacked) || unpacked.empty()) continue;
    // Without a list the converter sorts. Every name that still sorts after the one before it keeps
    // its place, whether or not that one loses its ".gz" too.
    const bool keepsPlace =
        listed ? !known.contains(unpacked) : index == 0 || unpacked > names[index - 1];
    unpackable[index] = keepsPlace;
  }
  return unpackable;
}

}  // namespace Quillet
