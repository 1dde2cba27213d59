#include "tests/shards/laid_shard.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>

namespace fs = std::filesystem;

namespace {

std::string bytesOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

LaidShard::LaidShard(const ProjectFolder& project, const std::vector<std::string>& names,
                     Quillet::ShardSettings flags, const std::string& name)
    : folder_((project.path() / "shards" / name).string()) {
  const fs::path root = project.path();
  fs::create_directories(folder_.chromats());
  for (const std::string& listed : names) {
    for (const std::string& file : {listed, listed + ".gz"}) {
      const fs::path link = folder_.chromats() + '/' + file;
      if (listed.empty() || !fs::exists(root / "chromat_dir" / file)) continue;
      if (!fs::is_symlink(link)) fs::create_symlink(root / "chromat_dir" / file, link);
      break;
    }
  }
  flags.planId = "0123456789abcdef";
  flags.project = root.string() + '/';
  flags.chromatPath = flags.project + "chromat_dir/";
  flags.phdPath = flags.project + "phd_dir/";
  flags.polyPath = flags.project + "poly_dir/";
  Quillet::writeShard(folder_, {.settings = flags, .names = names});
}

ProgramResult LaidShard::run(std::vector<std::string> flags,
                             std::map<std::string, std::string> environment) const {
  flags.insert(flags.begin(), {"run", path()});
  return runProgram(QUILLET_SHARDS_PROGRAM,
                    {.folder = "/", .arguments = flags, .environment = std::move(environment)});
}

std::string LaidShard::messages() const { return bytesOf(folder_.messages()); }

std::vector<std::string> LaidShard::content() const {
  std::vector<std::string> paths;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path())) {
    paths.push_back(entry.path().string().substr(path().size() + 1));
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::vector<std::string> laidContent(const LaidShard& shard) {
  std::vector<std::string> paths = {"chromat_dir", "names", "settings"};
  for (const fs::directory_entry& entry : fs::directory_iterator(shard.folder().chromats())) {
    paths.push_back("chromat_dir/" + entry.path().filename().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::map<std::string, std::string> timelessFiles(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    static const std::regex time("\nTIME: [^\n]*\nTRACE_ARRAY");
    files[entry.path().filename()] =
        std::regex_replace(bytesOf(entry.path()), time, "\nTIME: \nTRACE_ARRAY");
  }
  return files;
}

std::string plainMessages(const ProjectFolder& project, const std::vector<std::string>& flags,
                          const std::map<std::string, std::string>& environment) {
  std::vector<std::string> words = {"-c", "exec \"$@\" 2>&1", "sh", QUILLET_PROGRAM};
  words.insert(words.end(), flags.begin(), flags.end());
  const std::string printed =
      runProgram(
          "sh", {.folder = project.path().string(), .arguments = words, .environment = environment})
          .out;
  static const std::regex opening("^\nQUILLET[^\n]*\n-{62}\n(Reading file [^\n]*\n)?");
  static const std::regex meter("(^|\n) *[0-9]+% done(?=\n)");
  // Each meter line goes with the line feed before it; the first one has none.
  const std::string rest = std::regex_replace(printed, opening, "\n");
  return std::regex_replace(rest, meter, "").substr(1);
}
