#include "tests/shards/started_run.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

StartedRun::StartedRun(const std::string& program, const ProgramRun& run) {
  std::vector<std::string> texts = {program};
  texts.insert(texts.end(), run.arguments.begin(), run.arguments.end());
  std::vector<char*> words;
  for (std::string& text : texts) words.push_back(text.data());
  words.push_back(nullptr);

  id_ = fork();
  if (id_ < 0) throw std::runtime_error("can not fork");
  if (id_ > 0) return;
  const int nothing = open("/dev/null", O_RDWR);
  for (int stream = 0; stream < 3; ++stream) dup2(nothing, stream);
  for (const auto& [name, value] : run.environment) setenv(name.c_str(), value.c_str(), 1);
  if (chdir(run.folder.c_str()) != 0) _exit(126);
  execvp(words[0], words.data());
  _exit(127);
}

StartedRun::~StartedRun() {
  if (id_ == 0) return;
  signal(SIGKILL);
  wait();
}

void StartedRun::signal(int number) const { kill(id_, number); }

int StartedRun::wait() {
  int status = 0;
  waitpid(id_, &status, 0);
  id_ = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool appears(const std::string& file) {
  for (int tries = 0; tries < 1000; ++tries) {
    if (std::filesystem::exists(file)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}
