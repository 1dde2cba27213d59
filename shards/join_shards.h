#pragma once

#include <string>
#include <vector>

namespace Quillet {

/// Moves the results of finished shards to where the plan says, prints their messages in order on
/// the standard error stream and removes them; the folder of the shards goes with the last one.
/// `projectFlags` are those that the converter takes, in its own words.
///
/// The exit status: 0, or 2 after a message with the names of unfinished shards. A join that was
/// interrupted is repeated; then one shard's messages may be printed again. At no moment has a
/// sample a .phd.1 without its .poly, or beside an old one. Without -o, a sample that somebody else
/// has converted since the plan stays as it is.
/// Throws std::runtime_error when a result can not be moved or a message not be written, and when a
/// shard was planned for another project. The shard stays, and a later join goes on with it.
int joinShards(const std::vector<std::string>& projectFlags);

}  // namespace Quillet
