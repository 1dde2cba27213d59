#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "audit/project_audit.h"
#include "report/output_file.h"
#include "report/spool.h"
#include "report/worst_samples.h"

namespace Quillet {

/// The report as one HTML file, which opens without any other.
///
/// What stands first in the file is known last, so rows and pictures wait in spools. Memory: one
/// trace, and the samples that the page shows without a script.
/// Errors: std::runtime_error, as Spool and OutputFile. Use: construct, add() each row, writeTo()
/// once.
class HtmlPage {
 public:
  static constexpr std::size_t mostStaticSamples = 200;

  struct About {
    std::string project;  // folder that the report is about
    bool hasPictures = true;
    std::time_t moment = 0;  // when the report was made
  };

  /// The spools lie in `spoolFolder`.
  HtmlPage(About about, const std::string& spoolFolder);

  void add(const AuditedSample& sample);
  void writeTo(OutputFile& file);

 private:
  const About about_;
  WorstSamples worst_{mostStaticSamples};
  std::uint64_t rowCount_ = 0;
  std::uint64_t shortReads_ = 0;
  Spool rows_;
  Spool pictures_;
};

}  // namespace Quillet
