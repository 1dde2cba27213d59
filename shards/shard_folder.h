#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The folder of one shard, PROJECT/shards/0001: what `plan` lays, `run` fills and `join` empties.
//
//   names         the names of the shard in the converter's order, each ended by a zero byte
//   settings      lines "key value", each ended by a zero byte
//   chromat_dir/  symbolic links to the traces, absolute; none where there was no trace to link to
//   attempt-*/    private folders of runs; begun-*/ before and gone-*/ after that
//   result/       phd_dir/, poly_dir/ and messages, all at once; the shard is done
//
// Attempts read through chromat_dir/. Beside the shards lie plan.tsv, the table of the plan, and
// .joined-*, shards on their way out.
namespace Quillet {

/// What a run over a shard must know.
struct ShardSettings {
  bool keepExtensions = false;  // the converter's -s
  bool overwrite = false;       // the converter's -o
  bool listed = false;          // the run gets the names as a list
  std::string planId;           // of the plan that laid the shard; no other plan has it
  // Folders as the project's plain run resolves them, for its messages. Each ends in "/".
  std::string project;
  std::string chromatPath;
  std::string phdPath;
  std::string polyPath;
};

struct ShardContents {
  ShardSettings settings;
  std::vector<std::string> names;  // with a list, a name may stand in it more than once
};

/// The paths in a shard's folder; none ends in "/".
class ShardFolder {
 public:
  explicit ShardFolder(std::string path);

  const std::string& path() const { return path_; }
  /// The last part of the path, such as "0001".
  std::string name() const;
  std::string names() const { return path_ + "/names"; }
  std::string settings() const { return path_ + "/settings"; }
  std::string chromats() const { return path_ + "/chromat_dir"; }
  std::string result() const { return path_ + "/result"; }
  std::string resultPhds() const { return result() + "/phd_dir"; }
  std::string resultPolys() const { return result() + "/poly_dir"; }
  std::string messages() const { return result() + "/messages"; }

  /// Whether there is a whole result. Engines may make an empty result folder before that.
  bool isDone() const;

 private:
  std::string path_;
};

/// The name of a shard, "0001": as many digits as the highest number needs, so that names sort.
/// Numbers start at 1.
std::string shardName(std::size_t number, std::size_t highest);

/// Writes the files `names` and `settings` into the folder, which exists. Throws
/// std::runtime_error.
void writeShard(const ShardFolder& folder, const ShardContents& contents);

/// Reads them. Throws std::runtime_error when the folder is no shard or a file is not whole.
ShardContents readShard(const ShardFolder& folder);

}  // namespace Quillet
