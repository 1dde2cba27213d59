#include "shards/attempt.h"

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "app/sample_name.h"
#include "audit/escaped_text.h"
#include "audit/impediments.h"
#include "shards/converter_run.h"
#include "shards/file_operations.h"
#include "shards/new_file.h"
#include "shards/whole_results.h"

namespace Quillet {

namespace {

constexpr const char* programName = "quillet-shards: ";
constexpr const char* resultFolders[] = {"/phd_dir", "/poly_dir"};

/// A text for the end of a message: without the line feeds at its own end.
std::string trimmed(std::string text) {
  text.erase(text.find_last_not_of('\n') + 1);
  return text;
}

void renameTo(const std::string& from, const std::string& to) {
  if (std::rename(from.c_str(), to.c_str()) != 0) throwSystemError("can not rename", from);
}

}  // namespace

Attempt::Attempt(const ShardFolder& shard, const ShardContents& contents, const AttemptPlace& place,
                 const StopSignals& signals)
    : shard_(shard), contents_(contents), signals_(signals), folder_(place) {}

std::string Attempt::convert(bool keepGzip) {
  makeProject(keepGzip);
  const std::vector<NameMessages> said = runOverAll();
  checkBrought(shard_, contents_, at("chromat_dir"));
  std::string messages = composed(said);
  makeResult(messages);
  return messages;
}

std::string Attempt::sampleOf(const std::string& name) const {
  return sampleName(name, !contents_.settings.keepExtensions).text();
}

void Attempt::makeProject(bool keepGzip) {
  for (const char* folder : resultFolders) makeFolder(folder_.path() + folder);
  writeNewFile(at(".quilletrc"), "");  // the first that the converter looks for
  traces_ = bringTraces(shard_, contents_, at("chromat_dir"), keepGzip, signals_);
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

std::vector<NameMessages> Attempt::runOverAll() const {
  std::vector<std::string> flags = {"-d", folder_.path()};
  if (contents_.settings.keepExtensions) flags.emplace_back("-s");
  if (contents_.settings.overwrite) flags.emplace_back("-o");
  if (contents_.settings.listed) flags.insert(flags.end(), {"-l", at("names")});
  const ConverterRun run = runConverter(folder_.path(), flags, signals_);
  if (run.status != 0) {
    throw std::runtime_error(shard_.path() + ": quillet ended with status " +
                             std::to_string(run.status) + ":\n" + trimmed(run.printed));
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
    throw std::runtime_error(shard_.path() +
                             ": quillet was disturbed: " + trimmed(messages.trouble));
  }
  return std::move(messages.byName);
}

/// Puts the messages together in the order of the names. Throws when a name has neither a message
/// nor a result.
std::string Attempt::composed(const std::vector<NameMessages>& said) const {
  std::string messages;
  std::vector<std::string> samples;                // that should have results, in order
  samples.reserve(traces_.size());                 // so that none moves
  std::unordered_set<std::string_view> converted;  // views of these
  auto next = said.begin();
  for (const AttemptTrace& trace : traces_) {
    if (trace.isLeftOut) {
      messages += ownMessage(trace, "is left out: gunzip would get a path that is not for a shell");
      continue;
    }
    const NameMessages& name = *next++;
    const std::string sample = sampleOf(trace.name);
    // The converter did not look at a trace whose sample was done.
    const bool isPassedOver = !contents_.settings.overwrite && converted.contains(sample);
    if (!isPassedOver) messages += trace.complaints;
    messages += name.text;
    if (name.hasMessage) {
      signals_.check();
      if (!trace.link.empty()) checkIsThere(trace);
    } else if (isTooLongForResult(sample)) {
      messages +=
          ownMessage(trace, "gives nothing: its .phd.1 would have a name of more than 255 bytes");
    } else if (!converted.contains(sample)) {
      converted.insert(samples.emplace_back(sample));
    }
  }
  checkResults(samples);
  return messages;
}

std::string Attempt::ownMessage(const AttemptTrace& trace, const char* what) const {
  return programName + contents_.settings.chromatPath + trace.name + ' ' + what + '\n';
}

void Attempt::checkResults(const std::vector<std::string>& samples) const {
  std::size_t badCount = 0;
  std::string first;
  WholeResults results(at("phd_dir"), at("poly_dir"));
  for (const std::string& sample : samples) {
    signals_.check();
    if (results.has(sample)) continue;
    if (badCount++ == 0) first = sample;
  }
  if (badCount == 0) return;
  std::string shown;
  appendEscaped(shown, first, true);
  throw std::runtime_error(shard_.path() + ": no whole results and no message for " +
                           std::to_string(badCount) + " of " + std::to_string(samples.size()) +
                           " samples, such as " + shown + ". Is there room on the disk?");
}

void Attempt::makeResult(const std::string& messages) const {
  makeFolder(at("result"));
  for (const char* folder : resultFolders) {
    renameTo(folder_.path() + folder, at("result") + folder);
  }
  writeNewFile(at("result/messages"), messages, true);
}

}  // namespace Quillet
