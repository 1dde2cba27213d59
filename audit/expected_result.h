#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/quality_gate.h"
#include "audit/phd_result.h"
#include "audit/result_file.h"
#include "foundation/string.h"
#include "output/poly_peaks.h"
#include "trace/trace_content.h"

namespace Tessaly {
class FileWriter;
}

namespace Quillet {

/// What the converter gives for a project of one trace alone.
///
/// Borrows the sample's name, the content, which is left as it is, and the storage of the peaks.
/// That of a trace with calls holds its peaks from then on.
class ExpectedResult {
 public:
  ExpectedResult(const Tessaly::String& sample, const TraceContent& content, PolyPeaks& peaks);

  /// Whether the count of bases is not 0; the text of the bases can be empty all the same.
  bool holdsCalls() const { return content_.calls.count > 0; }
  bool holdsQualities() const { return holdsQualities_; }
  /// What the quality gate refuses; where it refuses something, there is no result.
  const std::optional<UnusableQuality>& unusable() const { return unusable_; }

  const Tessaly::String& bases() const { return bases_; }          // up to the first zero byte
  const Tessaly::String& qualities() const { return qualities_; }  // up to the first 0
  const std::int32_t* positions() const;  // one for every base; null without calls

  // The bytes of the files, whatever the gate says.

  /// Compares with the whole .phd.1, but for the text after "TIME: " and blocks of other tools.
  bool equalsPhd(ResultFile& file) const;
  bool equalsPoly(ResultFile& file) const;

  /// Which parts of a .phd.1 are other than expected.
  struct Differences {
    bool bases = false;
    bool qualities = false;
    bool positions = false;
    bool header = false;
  };
  Differences differencesIn(const PhdParts& phd) const;

  /// Write what is expected; the time text is empty.
  void writePhd(Tessaly::FileWriter& writer) const;
  void writePoly(Tessaly::FileWriter& writer) const;

 private:
  bool equalsHeader(std::string_view text) const;

  const Tessaly::String& sample_;
  const TraceContent& content_;
  const PolyPeaks& peaks_;
  Tessaly::String bases_;
  Tessaly::String qualities_;
  bool holdsQualities_ = false;
  std::optional<UnusableQuality> unusable_;
  std::string header_;          // of the .phd.1, with an empty time text
  std::size_t timeOffset_ = 0;  // where the time text stands in it
};

}  // namespace Quillet
