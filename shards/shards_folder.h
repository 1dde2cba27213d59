#pragma once

#include <string>
#include <vector>

#include "audit/descriptor.h"
#include "shards/shard_folder.h"

namespace Quillet {

/// PROJECT/shards, with the hidden folders beside it that a plan is laid in and a joined one is
/// removed from. Errors: std::runtime_error.
class ShardsFolder {
 public:
  /// `project`: its root, which ends in "/".
  explicit ShardsFolder(const std::string& project);

  const std::string& path() const { return path_; }
  ShardFolder shard(const std::string& name) const { return ShardFolder(path_ + '/' + name); }
  /// The shards in the order of their names. A folder that holds nothing of a plan is none.
  std::vector<ShardFolder> shards() const;

  /// Makes an empty hidden folder beside this one.
  std::string makeHidden() const;
  /// Gives the hidden folder this one's name. What has the name now is removed.
  void replaceBy(const std::string& hidden) const;
  /// Renames a joined shard away, then removes it.
  void retire(const ShardFolder& shard) const;
  /// Renames the whole folder away, then removes it. Nothing happens without the folder.
  void retireAll() const;

  /// Removes hidden folders that killed commands have left.
  void removeLeftovers() const;
  /// A file that shows that somebody else made the folder; empty when there is none. Only for a
  /// folder without shards.
  std::string foreignFile() const;

 private:
  /// Renames the folder into a hidden one, whose path is the result; empty without the folder.
  std::string renameAway() const;

  std::string project_;
  std::string path_;
};

/// While there is such an object, no other process can make one for the same project. It locks the
/// project's root, which on network file systems counts on one machine only, and the table of the
/// plan, if there is one, which counts on all. Where there are no locks, it does nothing.
class ProjectLock {
 public:
  /// Throws std::runtime_error when another process has the project.
  explicit ProjectLock(const std::string& project);

 private:
  void lock(const std::string& path, int flags);

  std::string project_;
  std::vector<Descriptor> locked_;
};

}  // namespace Quillet
