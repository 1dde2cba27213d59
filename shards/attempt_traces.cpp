#include "shards/attempt_traces.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <unordered_map>

#include "audit/escaped_text.h"
#include "audit/impediments.h"
#include "shards/file_operations.h"
#include "shards/shard_names.h"
#include "shards/unpacking.h"

namespace fs = std::filesystem;

namespace Quillet {

namespace {

constexpr std::int64_t longestUnpacked = 256LL << 20;  // bytes
constexpr const char* packedSuffix = ".gz";

std::string escaped(const std::string& text) {
  std::string line;
  appendEscaped(line, text, true);
  return line;
}

/// Where a symbolic link leads; none when there is no link.
std::optional<std::string> linkAt(const std::string& path) {
  char target[PATH_MAX];
  const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
  if (length <= 0) return std::nullopt;
  return std::string(target, static_cast<std::size_t>(length));
}

[[noreturn]] void throwNoLink(const std::string& path) {
  throw std::runtime_error("there is no link " + escaped(path));
}

/// Fills one attempt's folder.
class Bringing {
 public:
  Bringing(const ShardFolder& shard, const ShardContents& contents, const std::string& attemptPath,
           bool keepGzip, const StopSignals& signals)
      : chromats_(shard.chromats() + '/'),
        attemptPath_(attemptPath + '/'),
        listed_(contents.settings.listed),
        keepGzip_(keepGzip),
        signals_(signals) {}

  AttemptTrace bring(const std::string& name, bool isUnpackable) {
    AttemptTrace trace{.name = name, .link = {}, .attemptName = name, .complaints = {}};
    std::string file = name;  // what the converter finds for the name
    const std::optional<std::string> target = targetFor(file);
    if (target) {
      trace.link = chromats_ + file;
      checkIsThere(trace);
    }
    if (isPackedName(file)) {
      const bool isFoundByItsPlainName = file != name;
      if (target && !keepGzip_ && (isFoundByItsPlainName || isUnpackable)) {
        trace.attemptName = unpackedName(file);
        const Unpacking unpacking =
            unpackInto(attemptPath_ + trace.attemptName, *target, longestUnpacked, signals_);
        trace.complaints = unpacking.complaints;
        if (unpacking.isUnpacked) return trace;
        trace.attemptName = name;
      }
      trace.isLeftOut = isTornByShell(attemptPath_ + file);
    }
    if (target && !trace.isLeftOut) link(*target, file);
    return trace;
  }

 private:
  /// Where the shard's link for a name leads. With a list there may be none, or one for the name
  /// with ".gz", which `file` becomes then.
  std::optional<std::string> targetFor(std::string& file) const {
    // An empty name is the folder itself.
    if (file.empty()) return std::nullopt;
    std::optional<std::string> target = linkAt(chromats_ + file);
    if (target) return target;
    if (!listed_) throwNoLink(chromats_ + file);
    if (isPackedName(file)) return std::nullopt;
    target = linkAt(chromats_ + file + packedSuffix);
    if (target) file += packedSuffix;
    return target;
  }

  void link(const std::string& target, const std::string& file) const {
    const std::string path = attemptPath_ + file;
    // Listed as `x`, which only x.gz is there for, and as `x.gz`: both need the same link.
    if (::symlink(target.c_str(), path.c_str()) == 0 || errno == EEXIST) return;
    throwSystemError("can not make", escaped(path));
  }

  const std::string chromats_;
  const std::string attemptPath_;
  const bool listed_;
  const bool keepGzip_;
  const StopSignals& signals_;
};

std::vector<AttemptTrace> bringOneByOne(const ShardFolder& shard, const ShardContents& contents,
                                        const std::string& attemptPath, bool keepGzip,
                                        const StopSignals& signals) {
  makeFolder(attemptPath);
  const std::vector<bool> unpackable = unpackableNames(contents.names, contents.settings.listed);
  Bringing bringing(shard, contents, attemptPath, keepGzip, signals);
  std::vector<AttemptTrace> traces;
  traces.reserve(contents.names.size());
  std::unordered_map<std::string, std::size_t> known;  // only a list repeats names
  for (std::size_t index = 0; index < contents.names.size(); ++index) {
    signals.check();
    const std::string& name = contents.names[index];
    if (contents.settings.listed) {
      const auto [place, isNew] = known.try_emplace(name, index);
      if (!isNew) {
        traces.push_back(traces[place->second]);
        continue;
      }
    }
    traces.push_back(bringing.bring(name, unpackable[index]));
  }
  return traces;
}

/// Whether the converter can be given the shard's own folder of links: it needs all of them as they
/// are, and the folder holds as many links and nothing else.
bool servesAsItIs(const ShardFolder& shard, const ShardContents& contents) {
  const std::vector<std::string>& names = contents.names;
  if (contents.settings.listed || std::any_of(names.begin(), names.end(), isPackedName)) {
    return false;
  }
  std::size_t linkCount = 0;
  std::error_code error;
  for (fs::directory_iterator entry(shard.chromats(), error), end; !error && entry != end;
       entry.increment(error)) {
    if (!entry->is_symlink(error)) return false;
    ++linkCount;
  }
  return !error && linkCount == names.size();
}

/// Saves making and removing a link for each trace.
std::vector<AttemptTrace> bringAllAtOnce(const ShardFolder& shard, const ShardContents& contents,
                                         const std::string& attemptPath,
                                         const StopSignals& signals) {
  if (::symlink(shard.chromats().c_str(), attemptPath.c_str()) != 0) {
    throwSystemError("can not make", escaped(attemptPath));
  }
  std::vector<AttemptTrace> traces;
  traces.reserve(contents.names.size());
  for (const std::string& name : contents.names) {
    signals.check();
    traces.push_back({.name = name,
                      .link = shard.chromats() + '/' + name,
                      .attemptName = name,
                      .complaints = {}});
    checkIsThere(traces.back());
  }
  return traces;
}

}  // namespace

void checkIsThere(const AttemptTrace& trace) {
  struct stat status;
  if (::stat(trace.link.c_str(), &status) == 0) return;
  const int error = errno;
  const std::optional<std::string> target = linkAt(trace.link);
  if (!target) throwNoLink(trace.link);
  throw std::runtime_error(escaped(*target) + " has gone since the plan: " + std::strerror(error));
}

std::vector<AttemptTrace> bringTraces(const ShardFolder& shard, const ShardContents& contents,
                                      const std::string& attemptPath, bool keepGzip,
                                      const StopSignals& signals) {
  return servesAsItIs(shard, contents)
             ? bringAllAtOnce(shard, contents, attemptPath, signals)
             : bringOneByOne(shard, contents, attemptPath, keepGzip, signals);
}

void checkBrought(const ShardFolder& shard, const ShardContents& contents,
                  const std::string& attemptPath) {
  std::error_code error;
  if (!fs::is_symlink(attemptPath, error) || servesAsItIs(shard, contents)) return;
  throw std::runtime_error("there are other files than before in " + escaped(shard.chromats()));
}

}  // namespace Quillet
