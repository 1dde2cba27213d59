#include "shards/all_shards.h"

#include <algorithm>
#include <iostream>
#include <numeric>

#include "audit/terminal_meter.h"
#include "shards/child_runs.h"
#include "shards/join_shards.h"

namespace Quillet {

namespace {

constexpr std::size_t mostNames = 2000;         // of a shard
constexpr std::size_t shardsOfEachProcess = 4;  // at least

/// Runs all shards, at most `processCount` at a time.
void runAll(const LaidPlan& plan, std::size_t processCount) {
  const auto& counts = plan.nameCounts;
  TerminalMeter meter(std::accumulate(counts.begin(), counts.end(), std::size_t{0}));
  ChildRuns children;
  for (std::size_t next = 0; next < plan.shards.size() || children.count() > 0;) {
    if (next < plan.shards.size() && children.count() < processCount) {
      children.start(next, plan.shards[next]);
      ++next;
      continue;
    }
    const EndedRun ended = children.wait();
    if (!ended.isDone) {
      meter.clear();
      std::cerr << ended.messages << std::flush;
    }
    for (std::size_t step = 0; step < counts[ended.shard]; ++step) meter.step();
  }
}

}  // namespace

std::size_t sizeForProcesses(std::size_t nameCount, std::size_t processCount) {
  const std::size_t share = nameCount / shardsOfEachProcess / processCount;
  return std::clamp(share, std::size_t{1}, mostNames);
}

int runAllShards(const PlanOptions& options, std::size_t processCount) {
  const LaidPlan plan = planShards(options, [processCount](std::size_t nameCount) {
    return sizeForProcesses(nameCount, processCount);
  });
  if (plan.shards.empty()) return 0;
  runAll(plan, processCount);
  return joinShards(options.projectFlags);
}

}  // namespace Quillet
