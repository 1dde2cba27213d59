#include "tests/shards/planned_project.h"

#include <filesystem>

#include "shards/shard_folder.h"

namespace fs = std::filesystem;

PlannedProject::PlannedProject()
    : pwd_("PWD", path().c_str()),
      home_("HOME", path().c_str()),
      prefix_("TESSALY_PATH", nullptr) {}

std::vector<std::string> PlannedProject::flags(std::vector<std::string> more) const {
  more.insert(more.begin(), {"-d", path().string()});
  return more;
}

std::vector<std::string> PlannedProject::shards() const {
  std::vector<std::string> found;
  if (!has("shards")) return found;
  for (const std::string& name : entries("shards")) {
    if (name != "plan.tsv") found.push_back(name);
  }
  return found;
}

std::vector<std::string> PlannedProject::names(const std::string& shard) const {
  return Quillet::readShard(Quillet::ShardFolder(absolute("shards/" + shard))).names;
}

std::vector<std::pair<std::string, std::string>> PlannedProject::links(
    const std::string& shard) const {
  std::vector<std::pair<std::string, std::string>> found;
  const std::string folder = "shards/" + shard + "/chromat_dir";
  for (const std::string& name : entries(folder)) {
    found.emplace_back(name, fs::read_symlink(path() / folder / name).string());
  }
  return found;
}

void PlannedProject::finish(const std::string& shard, const Files& phds, const Files& polys,
                            const std::string& messages) const {
  const std::string result = "shards/" + shard + "/result/";
  makeFolder(result + "phd_dir");
  makeFolder(result + "poly_dir");
  for (const auto& [name, bytes] : phds) write(result + "phd_dir/" + name, bytes);
  for (const auto& [name, bytes] : polys) write(result + "poly_dir/" + name, bytes);
  write(result + "messages", messages);
}
