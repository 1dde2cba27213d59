#include "shards/shard_plan.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "app/name_list.h"
#include "app/project.h"
#include "app/sample_name.h"
#include "app/settings.h"
#include "audit/companion_program.h"
#include "audit/descriptor.h"
#include "audit/escaped_text.h"
#include "audit/impediments.h"
#include "audit/terminal_meter.h"
#include "foundation/directory.h"
#include "shards/cut_points.h"
#include "shards/file_operations.h"
#include "shards/new_file.h"
#include "shards/shard_folder.h"
#include "shards/shard_names.h"
#include "shards/shards_folder.h"

namespace Quillet {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view packedSuffix = ".gz";
constexpr std::string_view phdSuffix = ".phd.1";

/// The names of the run that a plain run would convert now, with the sample of each.
struct PlannedNames {
  std::vector<std::string> names;
  std::vector<std::string> samples;
};

bool isListed(const Settings& settings) {
  Tessaly::String listFile;
  return settings.listFile(listFile);
}

std::vector<std::string> namesIn(const Settings& settings, const Project& project) {
  try {
    return namesOfRun(settings, project.chromatPath());
  } catch (int) {
    std::cerr << std::endl;  // the message about a list has no line end
    throw;
  }
}

/// A shard's links stand in one folder, so what leads out of it can have none.
void refusePaths(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (name.find('/') == std::string::npos && name != "." && name != "..") continue;
    std::string message = "the list holds a path instead of a name: ";
    appendEscaped(message, name, true);
    throw std::runtime_error(message);
  }
}

PlannedNames namesToConvert(const Settings& settings, const Project& project) {
  std::vector<std::string> all = namesIn(settings, project);
  if (isListed(settings)) refusePaths(all);

  PlannedNames planned;
  for (std::string& name : all) {
    const Tessaly::String text = sampleName(name, settings.stripExtensions);
    std::string sample(text.text(), static_cast<std::size_t>(text.length()));
    const std::string phd = project.phdPath().text() + sample + std::string(phdSuffix);
    if (!settings.overwrite && Tessaly::Directory::exists(phd.c_str())) continue;
    planned.names.push_back(std::move(name));
    planned.samples.push_back(std::move(sample));
  }
  return planned;
}

/// Knows the gzipped traces that a run can leave out, since they stay packed and their paths are
/// not for a shell. Such a trace replaces nothing.
class LeftOutTraces {
 public:
  LeftOutTraces(const std::vector<std::string>& names, bool listed, std::string chromatPath)
      : names_(names),
        isUnpacked_(unpackableNames(names, listed)),
        chromatPath_(std::move(chromatPath)) {}

  /// A trace that is unpacked in a run over all names is unpacked in every shard.
  bool contains(std::size_t index) const {
    std::string path = chromatPath_ + names_[index];
    if (!isPackedName(path)) {
      if (Tessaly::Directory::exists(path.c_str())) return false;
      path += packedSuffix;
    }
    return isTornByShell(path) && !isUnpacked_[index];
  }

 private:
  const std::vector<std::string>& names_;
  std::vector<bool> isUnpacked_;
  std::string chromatPath_;
};

std::vector<std::size_t> startsOf(const PlannedNames& planned, const Settings& settings,
                                  const Project& project, const PlanOptions& options,
                                  const UsualSize& usualSize) {
  const std::string chromatPath = project.chromatPath().text();
  const LeftOutTraces leftOut(planned.names, isListed(settings), chromatPath);
  CutPoints points(planned.samples, [&](std::size_t index) {
    return !leftOut.contains(index) && replacesCarriedCalls(chromatPath + planned.names[index]);
  });
  if (options.count) return startsByCount(points, *options.count);
  return startsBySize(points, options.size ? *options.size : usualSize(planned.names.size()));
}

/// A number that no other plan has.
std::string newPlanId() {
  std::random_device source;
  std::string id;
  for (int digit = 0; digit < 16; ++digit) id += "0123456789abcdef"[source() % 16];
  return id;
}

/// Makes the links of shards. Those of a list lead to what the converter would open: the name, or
/// else the name with ".gz"; where there is neither, there is no link.
class TraceLinks {
 public:
  TraceLinks(const std::string& chromatPath, bool listed)
      : chromatPath_(absolutePath(chromatPath)), listed_(listed) {}

  void make(const std::string& folder, const std::vector<std::string>& names,
            TerminalMeter& meter) const {
    const Descriptor place(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!place.isOpen()) throwSystemError("can not open", folder);
    for (const std::string& name : names) {
      const std::string file = listed_ ? fileOf(name) : name;
      meter.step();
      if (file.empty()) continue;
      const bool isMade =
          symlinkat((chromatPath_ + file).c_str(), place.number(), file.c_str()) == 0;
      if (isMade || (listed_ && errno == EEXIST)) continue;
      throwSystemError("can not link to", chromatPath_ + file);
    }
  }

 private:
  std::string fileOf(const std::string& name) const {
    if (exists(name)) return name;
    std::string packed = name + std::string(packedSuffix);
    return !name.ends_with(packedSuffix) && exists(packed) ? packed : "";
  }
  bool exists(const std::string& file) const {
    return Tessaly::Directory::exists((chromatPath_ + file).c_str());
  }

  std::string chromatPath_;
  bool listed_;
};

/// Lays all shards into a hidden folder, which is gone with the object unless it was published.
class PlanLayer {
 public:
  explicit PlanLayer(const ShardsFolder& shards) : shards_(shards), hidden_(shards.makeHidden()) {}
  ~PlanLayer() {
    if (!hidden_.empty()) removeTree(hidden_);
  }
  PlanLayer(const PlanLayer&) = delete;
  PlanLayer& operator=(const PlanLayer&) = delete;

  void add(const std::string& name, const ShardContents& contents, const TraceLinks& links,
           TerminalMeter& meter) {
    const ShardFolder folder(hidden_ + '/' + name);
    makeFolder(folder.path());
    makeFolder(folder.chromats());
    links.make(folder.chromats(), contents.names, meter);
    writeShard(folder, contents);
    for (const std::string& trace : contents.names) {
      table_ += name;
      table_ += '\t';
      appendEscaped(table_, trace, false);
      table_ += '\n';
    }
  }

  void publish() {
    writeNewFile(hidden_ + "/plan.tsv", table_);
    shards_.replaceBy(hidden_);
    hidden_.clear();
  }

 private:
  const ShardsFolder& shards_;
  std::string hidden_;
  std::string table_ = "shard\ttrace\n";
};

LaidPlan lay(const ShardsFolder& shards, const ShardSettings& settings,
             const std::vector<std::string>& names, const std::vector<std::size_t>& starts) {
  LaidPlan plan;
  const TraceLinks links(settings.chromatPath, settings.listed);
  TerminalMeter meter(names.size());
  PlanLayer layer(shards);
  for (std::size_t shard = 0; shard < starts.size(); ++shard) {
    const std::size_t end = shard + 1 < starts.size() ? starts[shard + 1] : names.size();
    const auto at = [&names](std::size_t index) {
      return names.begin() + static_cast<std::ptrdiff_t>(index);
    };
    const ShardContents contents{settings, {at(starts[shard]), at(end)}};
    const std::string name = shardName(shard + 1, starts.size());
    layer.add(name, contents, links, meter);
    plan.shards.push_back(absolutePath(shards.shard(name).path()));
    plan.nameCounts.push_back(contents.names.size());
  }
  layer.publish();
  return plan;
}

/// Throws unless the place of the shards is free or may be made so.
void claim(const ShardsFolder& shards, bool force) {
  if (fs::is_symlink(shards.path())) {
    throw std::runtime_error(shards.path() + " is a symbolic link");
  }
  if (!shards.shards().empty()) {
    if (force) return;
    throw std::runtime_error(shards.path() +
                             " holds shards: run and join them, or give -f to remove them");
  }
  const std::string foreign = shards.foreignFile();
  if (!foreign.empty()) throw std::runtime_error(foreign + " is not from a plan");
}

}  // namespace

LaidPlan planShards(const PlanOptions& options, const UsualSize& usualSize) {
  const Settings settings = settingsOfRun(options.projectFlags);
  Project project(settings);
  project.prepare(ProjectUse::write);

  const ProjectLock lock(project.rootDir().text());
  const ShardsFolder shards(project.rootDir().text());
  shards.removeLeftovers();
  claim(shards, options.force);

  const PlannedNames planned = namesToConvert(settings, project);
  if (planned.names.empty()) {
    if (options.force) shards.retireAll();
    return {};
  }
  const std::vector<std::size_t> starts = startsOf(planned, settings, project, options, usualSize);
  return lay(shards,
             {.keepExtensions = !settings.stripExtensions,
              .overwrite = settings.overwrite,
              .listed = isListed(settings),
              .planId = newPlanId(),
              .project = absolutePath(project.rootDir().text()),
              .chromatPath = project.chromatPath().text(),
              .phdPath = absolutePath(project.phdPath().text()),
              .polyPath = absolutePath(project.polyPath().text())},
             planned.names, starts);
}

}  // namespace Quillet
