#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

/// What is said about a trap project besides its files.
struct TrapNotes {
  /// Listable names in an order of their own, with repetitions, and with some that are not there.
  /// Neighbours stay near each other: where the names of every sample spread over the whole list,
  /// it could be cut nowhere.
  std::vector<std::string> shuffled;
  /// Listable names of about half the samples.
  std::vector<std::string> half;
  /// Gzipped traces whose names the shell takes for something else, each with another trace of the
  /// same bytes that a plain run can convert. What a shard makes of the first is what a plain run
  /// makes of the second.
  std::vector<std::pair<std::string, std::string>> tornByShell;
};

/// Makes a project in `root`: over 3,000 small traces of every kind on which a careless division of
/// the work could go wrong, and empty result folders.
///
/// A trace without calls comes after each odd one, so that its result shows whether the odd one was
/// read, and when. Targets of links lie in linked/. The same bytes for every `seed`, but for the
/// absolute links.
TrapNotes makeTrapProject(const std::filesystem::path& root, std::uint32_t seed);
