#include "shards/child_runs.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "audit/escaped_text.h"

namespace Quillet {

namespace {

constexpr const char* ownProgram = "/proc/self/exe";

[[noreturn]] void fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

/// The child's part: becomes `quillet-shards run FOLDER` with its output in the file. Only calls
/// that are safe after a fork().
[[noreturn]] void becomeRun(pid_t parent, int output, char* const* arguments) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);  // it ended before that
  const int input = open("/dev/null", O_RDONLY);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  execv(ownProgram, arguments);
  constexpr std::string_view complaint = "quillet-shards: can not start itself by /proc\n";
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, complaint.data(), complaint.size());
  _exit(1);
}

}  // namespace

ChildRuns::~ChildRuns() {
  for (const auto& [id, child] : children_) {
    kill(id, SIGTERM);
    waitpid(id, nullptr, 0);
  }
}

void ChildRuns::start(std::size_t shard, const std::string& folder) {
  Descriptor output(memfd_create("quillet", MFD_CLOEXEC));
  if (!output.isOpen()) fail("can not make a file in memory");
  // Both streams go through one description, so that they do not write over each other.
  std::array<std::string, 3> words{"quillet-shards", "run", folder};
  char* const arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  const pid_t parent = getpid();
  const pid_t id = fork();
  if (id == 0) becomeRun(parent, output.number(), arguments);
  if (id < 0) fail("can not start a process");
  children_.emplace(id, Child{shard, std::move(output), folder});
}

EndedRun ChildRuns::wait() {
  for (;;) {
    int status = 0;
    const pid_t id = waitpid(-1, &status, 0);
    if (id < 0 && errno != EINTR) fail("can not wait for a process");
    const auto child = children_.find(id);
    if (child == children_.end()) continue;

    EndedRun ended{.shard = child->second.shard,
                   .isDone = WIFEXITED(status) && WEXITSTATUS(status) == 0,
                   .messages = contentOf(child->second.output.number())};
    if (WIFSIGNALED(status)) {
      ended.messages += "quillet-shards: the run of ";
      appendEscaped(ended.messages, child->second.folder, true);
      ended.messages += " was ended by signal " + std::to_string(WTERMSIG(status)) + '\n';
    }
    children_.erase(child);
    return ended;
  }
}

}  // namespace Quillet
