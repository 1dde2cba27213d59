#include "app/project.h"

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "app/name_list.h"
#include "app/quality_gate.h"
#include "app/sample_name.h"
#include "foundation/directory.h"
#include "foundation/progress_meter.h"
#include "foundation/vector.h"
#include "output/file_writer.h"
#include "output/phd_file.h"
#include "output/poly_file.h"
#include "output/poly_peaks.h"
#include "trace/trace_file.h"

namespace Quillet {

namespace {

/// Converts one file after another.
///
/// Deliberate: the base calls are not cleared between files. A trace without base calls, or without
/// usable qualities, gets those of the file before it.
class Batch {
 public:
  Batch(const Settings& settings, const Project& project)
      : settings_(settings), project_(project) {}

  /// Writes the results of one trace, unless it is done already or has to be skipped.
  void convert(const std::string& listedName);

 private:
  /// Reads the trace at `path`: its calls into the members, its content into `content`. False, with
  /// a message, when it can not be read. Cuts a final ".gz" off `path`.
  bool read(Tessaly::String& path, TraceContent& content);

  const Settings& settings_;
  const Project& project_;
  Tessaly::String bases_;
  Tessaly::String qualities_;
  Tessaly::Vector<std::int32_t> peaks_;
  PolyPeaks polyPeaks_;
};

bool Batch::read(Tessaly::String& path, TraceContent& content) {
  TraceFile trace;
  if (!trace.open(path)) {
    std::cerr << "ERROR: invalid trace file " << path << " - skipping." << std::endl;
    return false;
  }
  trace.getBaseCalls(bases_, qualities_, peaks_);
  content = trace.takeContent();
  content.calls = BaseCalls();  // copied out: a second copy only takes memory
  return true;
}

void Batch::convert(const std::string& listedName) {
  const Tessaly::String name = sampleName(listedName, settings_.stripExtensions);

  const Tessaly::String phdFile = project_.phdPath() + name + ".phd.1";
  if (!settings_.overwrite && Tessaly::Directory::exists(phdFile)) return;

  Tessaly::String path = project_.chromatPath() + listedName.c_str();
  TraceContent content;
  if (!read(path, content)) return;
  if (firstUnusableQuality(bases_, qualities_)) {
    std::cout << "Warning: missing quality values in trace file " << path << " - skipping."
              << std::endl;
    return;
  }

  // One writer for both: when the first file fails, nothing is written to the second.
  Tessaly::FileWriter writer;
  writePhdFile(writer, phdFile,
               {.sampleName = name,
                .callerName = content.callerName,
                .timeText = project_.timeText(),
                .pointCount = content.channels.pointCount(),
                .bases = bases_,
                .qualities = qualities_,
                .peaks = peaks_.data()});
  polyPeaks_.compute({content.channels, bases_, peaks_.data()});
  writePolyFile(writer, project_.polyPath() + name + ".poly",
                {.sampleName = name, .bases = bases_, .peaks = peaks_.data(), .found = polyPeaks_});
  polyPeaks_.releaseLongTrace();
}

}  // namespace

void Project::convertAll() {
  const std::vector<std::string> names = namesOfRun(settings_, chromatPath_);
  // The meter takes a 32-bit count; a list of 2^31 names would not fit into memory.
  Tessaly::ProgressMeter meter(static_cast<std::int32_t>(names.size()));
  meter.start();

  Batch batch(settings_, *this);
  for (const std::string& name : names) {
    meter.step();
    batch.convert(name);
  }
}

}  // namespace Quillet
