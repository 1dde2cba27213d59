#include "shards/child_process.h"

#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

using Quillet::ChildProcess;
using Quillet::Command;
using Quillet::StopSignals;

Command shell(const std::string& script) { return {.words = {"sh", "-c", script}, .folder = {}}; }

TEST(ChildProcess, GivesOutputAndStatus) {
  const StopSignals signals;
  ChildProcess child(shell("echo out; echo err >&2; exit 3"), signals);
  std::string printed;
  while (child.readSome(printed)) {
  }

  EXPECT_EQ(printed, "out\nerr\n");
  EXPECT_EQ(child.wait(), 3);
}

TEST(ChildProcess, TellsTheSignalThatEndedIt) {
  const StopSignals signals;
  ChildProcess child(shell("kill -9 $$"), signals);
  EXPECT_EQ(child.wait(), 128 + SIGKILL);
}

TEST(ChildProcess, AStatusThatTheSystemHasForgottenIsAnError) {
  const StopSignals signals;
  const auto former = std::signal(SIGCHLD, SIG_IGN);
  {
    ChildProcess child(shell("exit 3"), signals);
    EXPECT_THROW(child.wait(), std::runtime_error);
    EXPECT_NO_THROW(ChildProcess(shell("sleep 60"), signals)) << "its end kills the child";
  }
  std::signal(SIGCHLD, former);
}

}  // namespace
