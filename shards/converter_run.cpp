#include "shards/converter_run.h"

#include <filesystem>
#include <system_error>
#include <unistd.h>

#include "shards/child_process.h"

namespace Quillet {

namespace {

std::string converterProgram() {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::string beside = (self.parent_path() / "quillet").string();
  const bool isThere = !error && std::filesystem::is_regular_file(beside, error) &&
                       ::access(beside.c_str(), X_OK) == 0;
  return isThere ? beside : "quillet";
}

}  // namespace

ConverterRun runConverter(const std::string& folder, const std::vector<std::string>& flags,
                          const StopSignals& signals) {
  Command command{.words = {converterProgram()}, .folder = folder};
  command.words.insert(command.words.end(), flags.begin(), flags.end());
  ChildProcess converter(command, signals);
  ConverterRun run;
  while (converter.readSome(run.printed)) {
  }
  run.status = converter.wait();
  return run;
}

}  // namespace Quillet
