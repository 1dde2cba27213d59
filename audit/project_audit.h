#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/project.h"
#include "app/settings.h"
#include "audit/phd_result.h"
#include "audit/sample_row.h"
#include "output/poly_peaks.h"
#include "trace/trace_content.h"

namespace Quillet {

/// A row with what it was made from, borrowed for the length of a visit.
struct AuditedSample {
  const SampleRow& row;
  const TraceContent* content;  // null when the trace can not be read; channels as stored
  const PhdResult* result;      // what a whole .phd.1 says that is not right; else null
};

/// Reads every trace of a project again and compares its result with what the trace alone gives.
///
/// Borrows the settings and the prepared project; writes nothing. Memory: the names, and one trace
/// at a time. Names that share a sample are read twice, since the owner of the result must be known
/// before the first of them is shown. A bad file makes a row, never an exception; a lack of memory,
/// of room for unpacked content or of gunzip passes through.
/// Use: construct, run() once.
class ProjectAudit {
 public:
  /// Lists the names; throws 1, after a message, when the list file can not be opened.
  /// `mixedRatio`: how high a second peak stands, measured by the called one, to make a base mixed.
  ProjectAudit(const Settings& settings, const Project& project, double mixedRatio);

  /// Rows that run() visits for names; orphans come on top.
  std::size_t nameCount() const;

  /// Visits the names in the converter's order, each once, then the orphans by sample. `step` is
  /// called after each name, for a progress meter.
  void run(const std::function<void(const AuditedSample&)>& visit,
           const std::function<void()>& step);

 private:
  class Examination;
  struct SampleNames {
    std::size_t first = 0;  // index of the first name of the sample
    std::size_t count = 0;
  };

  std::string sampleOf(const std::string& name) const;
  std::size_t ownerOf(const std::string& sample, SampleNames names);
  void visitName(std::size_t index, const std::function<void(const AuditedSample&)>& visit);
  void visitOrphans(const std::function<void(const AuditedSample&)>& visit) const;

  const Settings& settings_;
  const Project& project_;
  const double mixedRatio_;
  std::vector<std::string> names_;  // each once, in the converter's order
  std::unordered_map<std::string, SampleNames> samples_;
  std::unordered_map<std::string, std::size_t> owners_;  // of samples that several names share
  PolyPeaks peaks_;
};

}  // namespace Quillet
