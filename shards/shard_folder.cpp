#include "shards/shard_folder.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <utility>

#include "shards/file_operations.h"
#include "shards/new_file.h"

namespace Quillet {

namespace {

using Entries = std::map<std::string, std::string>;

constexpr const char* nameCountKey = "names";  // detects a list of names that a crash has cut

struct Flag {
  const char* key;
  bool ShardSettings::*value;
};
constexpr std::array flags{Flag{"keepExtensions", &ShardSettings::keepExtensions},
                           Flag{"overwrite", &ShardSettings::overwrite},
                           Flag{"listed", &ShardSettings::listed}};

struct Text {
  const char* key;
  std::string ShardSettings::*value;
};
constexpr std::array texts{
    Text{"plan", &ShardSettings::planId}, Text{"project", &ShardSettings::project},
    Text{"chromat", &ShardSettings::chromatPath}, Text{"phd", &ShardSettings::phdPath},
    Text{"poly", &ShardSettings::polyPath}};

/// The texts of a file that ends each with a zero byte.
std::vector<std::string> readTexts(const ShardFolder& folder, const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open()) throw std::runtime_error(folder.path() + " is no shard: no " + path);
  if (!bytes.empty() && bytes.back() != '\0') {
    throw std::runtime_error(folder.path() + " is no shard: " + path + " is not whole");
  }
  std::vector<std::string> found;
  for (std::string_view rest = bytes; !rest.empty();) {
    const std::size_t length = rest.find('\0');
    found.emplace_back(rest.substr(0, length));
    rest.remove_prefix(length + 1);
  }
  return found;
}

Entries readEntries(const ShardFolder& folder) {
  Entries entries;
  for (const std::string& line : readTexts(folder, folder.settings())) {
    const std::size_t blank = line.find(' ');
    if (blank != std::string::npos) entries[line.substr(0, blank)] = line.substr(blank + 1);
  }
  return entries;
}

}  // namespace

ShardFolder::ShardFolder(std::string path) : path_(std::move(path)) {
  while (path_.size() > 1 && path_.back() == '/') path_.pop_back();
}

std::string ShardFolder::name() const { return path_.substr(path_.rfind('/') + 1); }

bool ShardFolder::isDone() const {
  struct stat status;
  return stat(messages().c_str(), &status) == 0;
}

std::string shardName(std::size_t number, std::size_t highest) {
  constexpr std::size_t fewestDigits = 4;
  const std::size_t digits = std::max(fewestDigits, std::to_string(highest).size());
  const std::string text = std::to_string(number);
  return std::string(digits - text.size(), '0') + text;
}

void writeShard(const ShardFolder& folder, const ShardContents& contents) {
  std::string names;
  for (const std::string& name : contents.names) names.append(name).push_back('\0');
  writeNewFile(folder.names(), names);

  std::string settings;
  const auto add = [&settings](const char* key, const std::string& value) {
    settings.append(key).append(" ").append(value).push_back('\0');
  };
  for (const Flag& flag : flags) add(flag.key, contents.settings.*flag.value ? "1" : "0");
  for (const Text& text : texts) add(text.key, contents.settings.*text.value);
  add(nameCountKey, std::to_string(contents.names.size()));
  writeNewFile(folder.settings(), settings);
}

ShardContents readShard(const ShardFolder& folder) {
  const Entries entries = readEntries(folder);
  const auto value = [&](const char* key) -> const std::string& {
    const auto entry = entries.find(key);
    if (entry != entries.end()) return entry->second;
    throw std::runtime_error(folder.path() + " is no shard: its settings do not say `" + key + "'");
  };
  ShardContents contents;
  for (const Flag& flag : flags) contents.settings.*flag.value = value(flag.key) == "1";
  for (const Text& text : texts) contents.settings.*text.value = value(text.key);
  contents.names = readTexts(folder, folder.names());
  if (std::to_string(contents.names.size()) != value(nameCountKey)) {
    throw std::runtime_error(folder.path() + " is no shard: " + folder.names() + " is not whole");
  }
  return contents;
}

}  // namespace Quillet
