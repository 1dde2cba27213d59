#include "shards/run_shards.h"

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "audit/companion_program.h"
#include "shards/all_shards.h"
#include "shards/command_line.h"
#include "shards/join_shards.h"
#include "shards/shard_plan.h"
#include "shards/shard_run.h"

namespace Quillet {

namespace {

int answer(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  if (std::fclose(stdout) != 0) throw std::runtime_error("can not write standard output");
  return 0;
}

int perform(const ShardsCommand& command) {
  switch (command.task) {
    case ShardsTask::answer:
      return answer(command.answer);
    case ShardsTask::plan:
      planShards(command.plan);
      return 0;
    case ShardsTask::run:
      return runShard(
          {.shard = command.shard, .scratch = command.scratch, .keepGzip = command.keepGzip});
    case ShardsTask::join:
      return joinShards(command.plan.projectFlags);
    case ShardsTask::all:
      return runAllShards(command.plan, command.processCount);
  }
  return 0;
}

}  // namespace

int runShards(int argc, const char* const* argv) {
  std::signal(SIGXFSZ, SIG_IGN);  // a write that a limit forbids fails
  std::signal(SIGCHLD, SIG_DFL);  // whoever started the program may have had it ignored
  return runCompanion("quillet-shards", argc, argv, [](const std::vector<std::string>& words) {
    return perform(readShardsCommand(words));
  });
}

}  // namespace Quillet
