#pragma once

namespace Quillet {

/// One run of quillet-shards, from the command line to the exit status. Nothing is thrown.
int runShards(int argc, const char* const* argv);

}  // namespace Quillet
