#include "shards/child_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;  // NOLINT(readability-redundant-declaration): not every libc declares it

namespace Quillet {

namespace {

[[noreturn]] void fail(const std::string& what, int error) {
  throw std::runtime_error(what + ": " + std::strerror(error));
}

struct Pipe {
  Pipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) fail("can not make a pipe", errno);
    toRead.reset(ends[0]);
    toWrite.reset(ends[1]);
  }

  Descriptor toRead;
  Descriptor toWrite;
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentIn(const std::string& folder) {
  std::vector<std::string> texts;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    if (folder.empty() || std::strncmp(*entry, "PWD=", 4) != 0) texts.emplace_back(*entry);
  }
  if (!folder.empty()) texts.push_back("PWD=" + folder);
  return texts;
}

/// Makes handlers of this program harmless in the child before it becomes another program.
void forgetHandlers() {
  constexpr int lastOrdinarySignal = 31;
  for (int number = 1; number <= lastOrdinarySignal; ++number) {
    struct sigaction action;
    if (::sigaction(number, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
      ::signal(number, SIG_DFL);
    }
  }
}

/// What the child does before it becomes the program: system calls only. Returns when one fails.
void becomeProgram(const Command& command, char* const* words, char* const* environment,
                   pid_t parent, int output, int errors) {
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(1);  // it has ended already
  const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (input < 0 || ::dup2(input, STDIN_FILENO) < 0 || ::dup2(output, STDOUT_FILENO) < 0 ||
      ::dup2(errors, STDERR_FILENO) < 0) {
    return;
  }
  if (!command.folder.empty() && ::chdir(command.folder.c_str()) != 0) return;
  ::execvpe(words[0], words, environment);
}

}  // namespace

ChildProcess::ChildProcess(const Command& command, const StopSignals& signals, int errors)
    : signals_(signals) {
  std::vector<std::string> wordTexts = command.words;
  std::vector<std::string> environmentTexts = environmentIn(command.folder);
  const std::vector<char*> words = pointersTo(wordTexts);
  const std::vector<char*> environment = pointersTo(environmentTexts);
  Pipe output;
  Pipe problem;
  const pid_t parent = ::getpid();

  id_ = ::fork();
  if (id_ < 0) fail("can not start a process", errno);
  if (id_ == 0) {
    forgetHandlers();
    signals.restore();
    becomeProgram(command, words.data(), environment.data(), parent, output.toWrite.number(),
                  errors < 0 ? output.toWrite.number() : errors);
    const int error = errno;
    [[maybe_unused]] const ssize_t told = ::write(problem.toWrite.number(), &error, sizeof error);
    ::_exit(127);
  }
  ::setpgid(id_, id_);  // here too: it must hold before the first kill
  output.toWrite.close();
  problem.toWrite.close();
  output_.reset(output.toRead.release());

  int error = 0;
  const ssize_t got = Quillet::readSome(problem.toRead.number(), &error, sizeof error);
  if (got == sizeof error) {
    int status = 0;
    reap(status);
    fail("can not start " + command.words[0], error);
  }
}

ChildProcess::~ChildProcess() {
  output_.close();
  if (id_ == 0) return;
  ::kill(-id_, SIGKILL);
  int status = 0;
  reap(status);
}

bool ChildProcess::readSome(std::string& bytes) {
  for (;;) {
    pollfd waited[] = {{output_.number(), POLLIN, 0}, {signals_.descriptor(), POLLIN, 0}};
    if (::poll(waited, 2, -1) < 0 && errno != EINTR) fail("can not wait for output", errno);
    signals_.check();
    if (waited[0].revents == 0) continue;
    char buffer[1 << 16];
    const ssize_t got = Quillet::readSome(output_.number(), buffer, sizeof buffer);
    if (got < 0) fail("can not read output", errno);
    bytes.append(buffer, static_cast<std::size_t>(got));
    return got > 0;
  }
}

bool ChildProcess::reap(int& status) {
  pid_t ended = 0;
  do {
    ended = ::waitpid(id_, &status, 0);
  } while (ended < 0 && errno == EINTR);
  id_ = 0;
  return ended >= 0;
}

int ChildProcess::wait() {
  int status = 0;
  if (!reap(status)) fail("can not wait for a process", errno);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace Quillet
