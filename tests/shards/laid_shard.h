#pragma once

#include <map>
#include <string>
#include <vector>

#include "shards/shard_folder.h"
#include "tests/support/project_folder.h"

/// A shard of a project, laid without the help of `plan`, and the runs over it.
class LaidShard {
 public:
  /// Lays PROJECT/shards/NAME with the traces of the project's chromat_dir: a link for each name,
  /// or for the name with ".gz" if only that is there, or none.
  LaidShard(const ProjectFolder& project, const std::vector<std::string>& names,
            Quillet::ShardSettings flags = {}, const std::string& name = "01");

  std::string path() const { return folder_.path(); }
  const Quillet::ShardFolder& folder() const { return folder_; }

  /// Runs `quillet-shards run` over it, in the root folder.
  ProgramResult run(std::vector<std::string> flags = {},
                    std::map<std::string, std::string> environment = {}) const;

  std::string messages() const;
  /// Everything in the shard's folder, by path, sorted.
  std::vector<std::string> content() const;

 private:
  Quillet::ShardFolder folder_;
};

/// What a shard holds before its first run.
std::vector<std::string> laidContent(const LaidShard& shard);

/// The bytes of all files in a folder by name, the times of .phd.1 files left out.
std::map<std::string, std::string> timelessFiles(const std::string& folder);

/// What one plain run of the converter, started in the project's folder, prints to both its streams
/// in its order, without the opening and the meter's lines. No name may look like these.
std::string plainMessages(const ProjectFolder& project, const std::vector<std::string>& flags = {},
                          const std::map<std::string, std::string>& environment = {});
