#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/support/environment.h"
#include "tests/support/project_folder.h"

/// A project that is planned and joined in the test's own process: PWD and HOME are its root.
class PlannedProject : public ProjectFolder {
 public:
  PlannedProject();

  /// The words that choose the project, then more.
  std::vector<std::string> flags(std::vector<std::string> more = {}) const;
  /// The names of the shard's folder, such as "0001", in order.
  std::vector<std::string> shards() const;
  /// The names that the shard has, in order.
  std::vector<std::string> names(const std::string& shard) const;
  /// The links of a shard: name and target, sorted by name.
  std::vector<std::pair<std::string, std::string>> links(const std::string& shard) const;
  std::string absolute(const std::string& name) const { return at(name).text(); }

  /// Puts a finished result into the shard: the contents of files of phd_dir and poly_dir, by name.
  using Files = std::vector<std::pair<std::string, std::string>>;
  void finish(const std::string& shard, const Files& phds, const Files& polys,
              const std::string& messages) const;

 private:
  EnvironmentVariable pwd_;
  EnvironmentVariable home_;
  EnvironmentVariable prefix_;
};

/// What the call throws as std::runtime_error; empty when it throws nothing.
template <typename Call>
std::string complaintOf(const Call& call) {
  try {
    call();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}
