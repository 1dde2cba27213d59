#pragma once

#include <optional>
#include <string>

namespace Quillet {

struct RunOptions {
  std::string shard;                   // path of the shard's folder
  std::optional<std::string> scratch;  // folder for the attempt; none: the shard's folder
  bool keepGzip = false;               // leave every .gz to the converter
};

/// Converts the traces of a shard in a private attempt folder and makes that the shard's result,
/// whole or not at all. Prints the converter's messages.
///
/// Returns the exit status 0, also when the shard was done before. Throws std::runtime_error when
/// it could not be done; nothing is left then. A signal that ends the program does so once the
/// attempt has been removed.
int runShard(const RunOptions& options);

}  // namespace Quillet
