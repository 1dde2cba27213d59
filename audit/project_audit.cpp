#include "audit/project_audit.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "app/name_list.h"
#include "app/sample_name.h"
#include "audit/call_figures.h"
#include "audit/expected_result.h"
#include "audit/impediments.h"
#include "audit/mixed_bases.h"
#include "audit/poly_result.h"
#include "audit/result_file.h"
#include "audit/sample_verdict.h"
#include "audit/trace_reading.h"
#include "foundation/directory.h"

namespace Quillet {

namespace {

constexpr std::string_view phdSuffix = ".phd.1";
constexpr std::string_view polySuffix = ".poly";

std::string standardText(const Tessaly::String& text) {
  return {text.text(), static_cast<std::size_t>(text.length())};
}

/// What the results of a sample say. `said` becomes what a whole .phd.1 says that is not right;
/// `expected` is null when the trace can not be read.
ResultFinding examineResults(const std::string& phdPath, const std::string& polyPath,
                             const ExpectedResult* expected, std::optional<PhdResult>& said) {
  ResultFinding finding;
  ResultFile phd(phdPath);
  finding.hasPhd = phd.exists();
  if (!finding.hasPhd) return finding;  // the .poly is not looked at

  // Almost every result is right, so that is asked first. It is also the only way to tell where
  // names and bases hold line feeds.
  std::optional<std::size_t> baseCount;
  const bool isExpected = expected != nullptr && expected->equalsPhd(phd);
  finding.phdIsRight = isExpected && !expected->unusable();
  finding.phdIsWhole = isExpected;
  if (isExpected) baseCount = static_cast<std::size_t>(expected->bases().length());
  if (!finding.phdIsRight) {
    const std::optional<std::string> text = phd.textFrom(0);
    const std::optional<PhdParts> parts = text ? splitPhd(*text) : std::nullopt;
    if (parts) {
      finding.phdIsWhole = true;
      baseCount = parts->baseCount;
      said = valuesOf(*parts);
    }
    if (parts && expected != nullptr && !isExpected) {
      const ExpectedResult::Differences differences = expected->differencesIn(*parts);
      finding.basesDiffer = differences.bases;
      finding.qualitiesDiffer = differences.qualities;
      finding.positionsDiffer = differences.positions;
      finding.headerDiffers = differences.header;
    }
  }

  ResultFile poly(polyPath);
  finding.hasPoly = poly.exists();
  finding.polyIsRight = expected != nullptr && expected->equalsPoly(poly);
  finding.polyIsWhole = finding.polyIsRight;
  if (finding.hasPoly && !finding.polyIsRight) {
    const auto text = poly.textFrom(0);
    finding.polyIsWhole = text && isWholePoly(*text, baseCount);
  }
  return finding;
}

/// Why no result can come of a trace that can be read; empty when one can.
std::string impedimentOf(const std::string& sample, const TraceReading& reading) {
  if (isTooLongForResult(sample)) return "name too long";
  if (isTornByShell(reading.packedPath)) return "name not for a shell";
  return "";
}

}  // namespace

/// One name: its trace, read again, and what there is to say of it.
class ProjectAudit::Examination {
 public:
  Examination(const ProjectAudit& audit, const std::string& name, PolyPeaks& peaks)
      : audit_(audit),
        name_(name),
        sample_(sampleName(name, audit.settings_.stripExtensions)),
        reading_(readTrace(audit.project_.chromatPath().text() + name)),
        peaks_(peaks) {
    trace_.fault = reading_.fault;
    if (!trace_.fault.empty()) return;
    expected_.emplace(sample_, reading_.content, peaks_);
    trace_.impediment = impedimentOf(standardText(sample_), reading_);
    trace_.holdsCalls = expected_->holdsCalls();
    trace_.holdsQualities = expected_->holdsQualities();
    trace_.unusable = expected_->unusable();
    trace_.qualityCount = expected_->qualities().length();
  }
  Examination(const Examination&) = delete;
  Examination& operator=(const Examination&) = delete;

  bool canBeRead() const { return trace_.fault.empty(); }

  SampleVerdict verdictWithResult() {
    const std::string sample = standardText(sample_);
    const std::string phd = audit_.project_.phdPath().text() + sample + std::string(phdSuffix);
    const std::string poly = audit_.project_.polyPath().text() + sample + std::string(polySuffix);
    said_.reset();
    const ExpectedResult* const expected = expected_ ? &*expected_ : nullptr;
    return verdictOf(trace_, examineResults(phd, poly, expected, said_));
  }
  SampleVerdict verdictWithoutResult() const { return Quillet::verdictWithoutResult(trace_); }

  /// Shows the row with its verdict.
  void show(SampleVerdict verdict, const std::function<void(const AuditedSample&)>& visit) {
    SampleRow row;
    row.sample = standardText(sample_);
    row.trace = name_;
    row.state = verdict.state;
    row.detail = std::move(verdict.detail);
    if (canBeRead()) {
      const BaseCalls& calls = reading_.content.calls;
      row.bases = calls.count;
      if (calls.count > 0) row.figures = figures();
      row.caller = standardText(reading_.content.callerName);
      row.notes = std::move(reading_.notes);
    }
    visit({.row = row,
           .content = canBeRead() ? &reading_.content : nullptr,
           .result = said_ ? &*said_ : nullptr});
  }

 private:
  CallFigures figures() const {
    const BaseCalls& calls = reading_.content.calls;
    CallFigures figures =
        figuresOf({calls.bases.get(), calls.count}, {calls.qualities.get(), calls.count});
    figures.mixed = mixedBases({.bases = expected_->bases(),
                                .positions = expected_->positions(),
                                .channels = reading_.content.channels,
                                .begin = figures.trimStart,
                                .end = figures.trimEnd,
                                .ratio = audit_.mixedRatio_});
    return figures;
  }

  const ProjectAudit& audit_;
  const std::string& name_;
  const Tessaly::String sample_;
  TraceReading reading_;
  PolyPeaks& peaks_;
  std::optional<ExpectedResult> expected_;  // none when the trace can not be read
  TraceFinding trace_;
  std::optional<PhdResult> said_;
};

ProjectAudit::ProjectAudit(const Settings& settings, const Project& project, double mixedRatio)
    : settings_(settings), project_(project), mixedRatio_(mixedRatio) {
  std::vector<std::string> listed = namesOfRun(settings, project.chromatPath());
  names_.reserve(listed.size());  // the names in it are borrowed, so they must not move
  std::unordered_set<std::string_view> known;
  for (std::string& name : listed) {
    if (known.contains(name)) continue;
    names_.push_back(std::move(name));
    known.insert(names_.back());
  }
  for (std::size_t index = 0; index < names_.size(); ++index) {
    const auto [place, isNew] = samples_.try_emplace(sampleOf(names_[index]));
    if (isNew) place->second.first = index;
    ++place->second.count;
  }
}

std::size_t ProjectAudit::nameCount() const { return names_.size(); }

std::string ProjectAudit::sampleOf(const std::string& name) const {
  return standardText(sampleName(name, settings_.stripExtensions));
}

void ProjectAudit::run(const std::function<void(const AuditedSample&)>& visit,
                       const std::function<void()>& step) {
  for (std::size_t index = 0; index < names_.size(); ++index) {
    visitName(index, visit);
    peaks_.releaseLongTrace();
    step();
  }
  Tessaly::String listFile;
  // A list names some traces; results of others are no orphans.
  if (!settings_.listFile(listFile)) visitOrphans(visit);
}

void ProjectAudit::visitName(std::size_t index,
                             const std::function<void(const AuditedSample&)>& visit) {
  const std::string sample = sampleOf(names_[index]);
  const SampleNames names = samples_.at(sample);
  const std::size_t owner = names.count > 1 ? ownerOf(sample, names) : index;

  Examination examination(*this, names_[index], peaks_);
  if (owner == index) {
    examination.show(examination.verdictWithResult(), visit);
    return;
  }
  SampleVerdict verdict = examination.verdictWithoutResult();
  if (verdict.state == SampleState::waiting) verdict = {SampleState::hidden, names_[owner]};
  examination.show(std::move(verdict), visit);
}

std::size_t ProjectAudit::ownerOf(const std::string& sample, SampleNames names) {
  const auto known = owners_.find(sample);
  if (known != owners_.end()) return known->second;

  // The first name of the best rank. Where there is no result, only one that waits can own it.
  enum Rank { none, readable, waiting, borrowed, right };
  std::size_t owner = names.first;
  Rank best = none;
  for (std::size_t index = names.first, left = names.count; left > 0 && best < right; ++index) {
    if (index != names.first && sampleOf(names_[index]) != sample) continue;
    --left;
    Examination examination(*this, names_[index], peaks_);
    const SampleState with = examination.verdictWithResult().state;
    Rank rank = examination.canBeRead() ? readable : none;
    if (examination.verdictWithoutResult().state == SampleState::waiting) rank = waiting;
    if (with == SampleState::borrowed) rank = borrowed;
    if (with == SampleState::converted || with == SampleState::noPoly) rank = right;
    if (rank > best) {
      best = rank;
      owner = index;
    }
    peaks_.releaseLongTrace();
  }
  owners_.emplace(sample, owner);
  return owner;
}

void ProjectAudit::visitOrphans(const std::function<void(const AuditedSample&)>& visit) const {
  struct Found {
    bool phd = false;
    bool poly = false;
  };
  std::map<std::string, Found> orphans;
  const auto gather = [&](const Tessaly::String& path, std::string_view suffix, bool Found::*kind) {
    for (const std::string& file : namesInDirectory(path)) {
      if (!file.ends_with(suffix)) continue;
      std::string sample = file.substr(0, file.size() - suffix.size());
      if (!samples_.contains(sample)) orphans[std::move(sample)].*kind = true;
    }
  };
  gather(project_.phdPath(), phdSuffix, &Found::phd);
  gather(project_.polyPath(), polySuffix, &Found::poly);

  for (const auto& [sample, found] : orphans) {
    SampleRow row;
    row.sample = sample;
    row.state = SampleState::orphan;
    row.detail = found.phd && found.poly ? "phd,poly" : found.phd ? "phd" : "poly";
    std::optional<PhdResult> said;
    if (found.phd) {
      const ResultFile phd(project_.phdPath().text() + sample + std::string(phdSuffix));
      const std::optional<std::string> text = phd.textFrom(0);
      const std::optional<PhdParts> parts = text ? splitPhd(*text) : std::nullopt;
      if (parts) said = valuesOf(*parts);
    }
    visit({.row = row, .content = nullptr, .result = said ? &*said : nullptr});
  }
}

}  // namespace Quillet
