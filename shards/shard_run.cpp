#include "shards/shard_run.h"

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/sample_name.h"
#include "audit/escaped_text.h"
#include "audit/impediments.h"
#include "foundation/directory.h"
#include "shards/attempt_folder.h"
#include "shards/attempt_traces.h"
#include "shards/converter_run.h"
#include "shards/file_operations.h"
#include "shards/held_shard.h"
#include "shards/new_file.h"
#include "shards/run_messages.h"
#include "shards/shard_folder.h"
#include "shards/stop_signals.h"
#include "shards/whole_results.h"

namespace fs = std::filesystem;

namespace Quillet {

namespace {

constexpr const char* programName = "quillet-shards: ";
constexpr const char* scratchPrefix = "quillet-";  // of attempts in folders that others use too
constexpr const char* resultFolders[] = {"/phd_dir", "/poly_dir"};

std::string absolute(const std::string& path) {
  return path.starts_with('/') ? path : Tessaly::Directory::currentDirectory().text() + path;
}

void renameTo(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) throwSystemError("can not rename", from);
}

void writeNewFile(const std::string& path, const std::string& bytes, bool toDisk = false) {
  NewFile file(path);
  file.write(bytes);
  if (toDisk) file.sync();
  file.finish();
}

void copyFile(const std::string& from, const std::string& to, bool toDisk = false) {
  NewFile file(to);
  file.writeFrom(from);
  if (toDisk) file.sync();
  file.finish();
}

/// One attempt at a shard.
class Attempt {
 public:
  Attempt(const ShardFolder& shard, const ShardContents& contents, const AttemptPlace& place,
          const StopSignals& signals)
      : shard_(shard), contents_(contents), signals_(signals), folder_(place) {}

  const AttemptFolder& folder() const { return folder_; }

  /// Makes `result` in the attempt's folder; returns the messages.
  std::string convert(bool keepGzip) {
    makeProject(keepGzip);
    const std::vector<NameMessages> said = runOverAll();
    const std::string messages = composed(said);
    makeResult(messages);
    return messages;
  }

 private:
  std::string at(const std::string& name) const { return folder_.path() + '/' + name; }

  std::string sampleOf(const std::string& name) const {
    return sampleName(name, !contents_.settings.keepExtensions).text();
  }

  void makeProject(bool keepGzip) {
    makeFolder(at("chromat_dir"));
    for (const char* folder : resultFolders) makeFolder(folder_.path() + folder);
    writeNewFile(at(".quilletrc"), "");  // the first that the converter looks for
    traces_ = bringTraces(shard_, contents_, at("chromat_dir/"), keepGzip, signals_);
    if (!contents_.settings.listed) return;
    std::string list;
    for (const AttemptTrace& trace : traces_) {
      if (trace.isLeftOut) continue;
      // A word that begins with a zero byte is an empty name.
      list += trace.attemptName.empty() ? std::string(1, '\0') : trace.attemptName;
      list += '\n';
    }
    writeNewFile(at("names"), list);
  }

  std::vector<NameMessages> runOverAll() const {
    std::vector<std::string> flags = {"-d", folder_.path()};
    if (contents_.settings.keepExtensions) flags.emplace_back("-s");
    if (contents_.settings.overwrite) flags.emplace_back("-o");
    if (contents_.settings.listed) flags.insert(flags.end(), {"-l", at("names")});
    const ConverterRun run = runConverter(folder_.path(), flags, signals_);
    if (run.status != 0) {
      throw std::runtime_error(shard_.path() + ": quillet ended with status " +
                               std::to_string(run.status) + ":\n" + run.printed);
    }
    PrintedRun printed{.resourceFile = at(".quilletrc"),
                       .chromatPath = at("chromat_dir/"),
                       .shownChromatPath = contents_.settings.chromatPath,
                       .names = {}};
    for (const AttemptTrace& trace : traces_) {
      if (!trace.isLeftOut) printed.names.push_back(trace.attemptName);
    }
    RunMessages messages = cutMessages(printed, run.printed);
    if (!messages.trouble.empty()) {
      throw std::runtime_error(shard_.path() + ": quillet was disturbed: " + messages.trouble);
    }
    return std::move(messages.byName);
  }

  /// Puts the messages together in the order of the names. Throws when a name has neither a message
  /// nor a result.
  std::string composed(const std::vector<NameMessages>& said) const {
    std::string messages;
    std::unordered_set<std::string> converted;  // samples
    auto next = said.begin();
    for (const AttemptTrace& trace : traces_) {
      signals_.check();
      if (trace.isLeftOut) {
        messages +=
            ownMessage(trace, "is left out: gunzip would get a path that is not for a shell");
        continue;
      }
      const NameMessages& name = *next++;
      const std::string sample = sampleOf(trace.name);
      // The converter did not look at a trace whose sample was done.
      const bool isPassedOver = !contents_.settings.overwrite && converted.contains(sample);
      if (!isPassedOver) messages += trace.complaints;
      messages += name.text;
      if (name.hasMessage) {
        if (!trace.target.empty()) checkIsThere(trace);
      } else if (isTooLongForResult(sample)) {
        messages +=
            ownMessage(trace, "gives nothing: its .phd.1 would have a name of more than 255 bytes");
      } else {
        converted.insert(sample);
      }
    }
    checkResults(converted);
    return messages;
  }

  std::string ownMessage(const AttemptTrace& trace, const char* what) const {
    return programName + contents_.settings.chromatPath + trace.name + ' ' + what + '\n';
  }

  void checkResults(const std::unordered_set<std::string>& samples) const {
    std::size_t badCount = 0;
    std::string first;
    WholeResults results(at("phd_dir/"), at("poly_dir/"));
    for (const std::string& sample : samples) {
      signals_.check();
      if (results.has(sample)) continue;
      if (badCount++ == 0 || sample < first) first = sample;
    }
    if (badCount == 0) return;
    std::string shown;
    appendEscaped(shown, first, true);
    throw std::runtime_error(shard_.path() + ": " + std::to_string(badCount) +
                             " samples have no whole results and no message, such as " + shown +
                             ". Is there room on the disk?");
  }

  void makeResult(const std::string& messages) const {
    makeFolder(at("result"));
    for (const char* folder : resultFolders) {
      renameTo(folder_.path() + folder, at("result") + folder);
    }
    writeNewFile(at("result/messages"), messages, true);
  }

  const ShardFolder& shard_;
  const ShardContents& contents_;
  const StopSignals& signals_;
  const AttemptFolder folder_;
  std::vector<AttemptTrace> traces_;
};

/// Copies the result of an attempt into one on the shard's own file system. The messages are last.
void copyResult(const AttemptFolder& from, const AttemptFolder& to, const StopSignals& signals) {
  const std::string source = from.path() + "/result";
  const std::string target = to.path() + "/result";
  makeFolder(target);
  for (const char* folder : resultFolders) {
    makeFolder(target + folder);
    for (const fs::directory_entry& entry : fs::directory_iterator(source + folder)) {
      signals.check();
      copyFile(entry.path(), target + folder + '/' + entry.path().filename().string());
    }
  }
  copyFile(source + "/messages", target + "/messages", true);
}

/// Makes the attempt's result that of the shard; false when another one was first.
bool publish(const HeldShard& held, const ShardFolder& shard, const AttemptFolder& attempt,
             const StopSignals& signals) {
  using Publication = HeldShard::Publication;
  if (held.isDone()) return false;
  Publication publication = held.publish(attempt);
  if (publication == Publication::otherFileSystem) {
    const AttemptFolder nearby({.folder = shard.path(), .prefix = ""});
    copyResult(attempt, nearby, signals);
    publication = held.publish(nearby);
    if (publication == Publication::otherFileSystem) {
      throw std::runtime_error(shard.path() + " can not take a folder from its own subfolder");
    }
  }
  return publication == Publication::published;
}

std::string convertShard(const ShardFolder& shard, const RunOptions& options,
                         const StopSignals& signals) {
  const HeldShard held(shard);
  const ShardContents contents = readShard(shard);
  AttemptPlace place{.folder = shard.path(), .prefix = ""};
  removeUnusedAttempts(place);
  if (options.scratch) {
    place = {.folder = ShardFolder(absolute(*options.scratch)).path(), .prefix = scratchPrefix};
    removeUnusedAttempts(place);
  }
  Attempt attempt(shard, contents, place, signals);
  std::string messages = attempt.convert(options.keepGzip);
  return publish(held, shard, attempt.folder(), signals) ? std::move(messages) : std::string();
}

}  // namespace

int runShard(const RunOptions& options) {
  const ShardFolder shard(absolute(options.shard));
  if (shard.isDone()) return 0;
  const StopSignals signals;
  try {
    std::cerr << convertShard(shard, options, signals) << std::flush;
    return 0;
  } catch (const Stopped&) {
    return 1;  // unless the signal's usual effect comes first, now that it is let through
  }
}

}  // namespace Quillet
