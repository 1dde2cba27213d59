#include "tests/support/program.h"

#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// An unlinked temporary file for one stream of the program.
class StreamFile {
 public:
  StreamFile() {
    std::string name = "/tmp/quillet-stream-XXXXXX";
    descriptor_ = mkstemp(name.data());
    if (descriptor_ < 0) throw std::runtime_error("no stream file");
    unlink(name.c_str());
  }
  ~StreamFile() { close(descriptor_); }
  StreamFile(const StreamFile&) = delete;
  StreamFile& operator=(const StreamFile&) = delete;

  int descriptor() const { return descriptor_; }

  void fill(const std::string& text) const {
    if (write(descriptor_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
      throw std::runtime_error("stream file too short");
    }
    lseek(descriptor_, 0, SEEK_SET);
  }

  std::string content() const {
    std::string text;
    char bytes[4096];
    lseek(descriptor_, 0, SEEK_SET);
    for (ssize_t count = 0; (count = read(descriptor_, bytes, sizeof bytes)) > 0;) {
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  int descriptor_;
};

std::vector<std::string> environmentOf(const ProgramRun& run) {
  const char* path = std::getenv("PATH");
  std::map<std::string, std::string> variables{{"PATH", path != nullptr ? path : "/usr/bin:/bin"},
                                               {"LC_ALL", "C"},
                                               {"TZ", "UTC"},
                                               {"PWD", run.folder},
                                               {"HOME", run.folder}};
  for (const auto& [name, value] : run.environment) variables[name] = value;
  for (const std::string& name : run.unset) variables.erase(name);
  std::vector<std::string> texts;
  for (const auto& [name, value] : variables) texts.push_back(name + "=" + value);
  return texts;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

ProgramResult runProgram(const std::string& program, const ProgramRun& run) {
  const StreamFile input;
  const StreamFile out;
  const StreamFile err;
  input.fill(run.input);
  std::vector<std::string> arguments = {program};
  arguments.insert(arguments.end(), run.arguments.begin(), run.arguments.end());
  std::vector<std::string> environment = environmentOf(run);
  const std::vector<char*> argv = pointersTo(arguments);
  const std::vector<char*> envp = pointersTo(environment);

  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("can not fork");
  if (child == 0) {
    dup2(input.descriptor(), 0);
    dup2(out.descriptor(), 1);
    dup2(err.descriptor(), 2);
    if (chdir(run.folder.c_str()) != 0) _exit(126);
    execvpe(program.c_str(), argv.data(), envp.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), out.content(),
          err.content()};
}

ProgramResult runQuillet(const ProgramRun& run) { return runProgram(QUILLET_PROGRAM, run); }

std::string banner() { return "\nQUILLET   Version 1.1.0\n" + std::string(62, '-') + "\n"; }
