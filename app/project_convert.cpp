#include "app/project.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <istream>
#include <memory>
#include <string>
#include <vector>

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

/// The first word of every line that has one, in the file's order.
std::vector<std::string> firstWords(std::istream& stream) {
  std::vector<std::string> words;
  for (std::string line; std::getline(stream, line);) {
    const auto start = std::find_if_not(line.begin(), line.end(), Tessaly::isWhiteSpace);
    const auto end = std::find_if(start, line.end(), Tessaly::isWhiteSpace);
    if (start != end) words.emplace_back(start, end);
  }
  return words;
}

/// The names to convert, as they are listed; throws 1 when the list file can not be opened.
std::vector<std::string> listNames(const Settings& settings, const Tessaly::String& chromatPath) {
  Tessaly::String listFile;
  if (!settings.listFile(listFile)) return Tessaly::Directory(chromatPath.text()).files();
  if (listFile == "-") return firstWords(std::cin);

  std::ifstream stream(listFile.text());
  if (!stream.is_open()) {
    std::cerr << "ERROR: can not open the file " << listFile;
    throw 1;
  }
  return firstWords(stream);
}

/// Turns a listed name into the sample's: without ".gz" and, when asked for, a known extension.
void deriveSampleName(Tessaly::String& name, bool stripExtensions) {
  if (name.endsWith(".gz")) name.removeLast(3);
  if (!stripExtensions || !name.contains('.')) return;

  const std::int32_t dot = name.lastIndex('.');
  Tessaly::String extension;
  extension.setTail(name, dot);
  // Deliberate: any part of the list counts, so that ".ab", ".sc" and "." are cut off as well.
  if (extension.occursIn(" .abi .ab1 .scf ")) name.cut(dot);
}

/// Whether the bases 40 to 59 all have a usable quality; the window is fixed.
bool hasQualities(const Tessaly::String& bases, const Tessaly::String& qualities) {
  for (std::int32_t i = 40; i <= 59 && i < bases.length(); ++i) {
    if (std::toupper(static_cast<unsigned char>(bases[i])) == 'N') continue;
    // A quality text ends at its first 0, so that what lies behind its end is missing too.
    const int quality = i < qualities.length() ? static_cast<unsigned char>(qualities[i]) : 0;
    if (quality == 0 || quality >= 100) return false;
  }
  return true;
}

/// What the files of one batch share.
///
/// Deliberate: the base calls are not cleared from one file to the next, so that a trace without
/// base calls, or without usable qualities, goes on with those of the file before it.
class Batch {
 public:
  Batch(const Settings& settings, const Project& project)
      : settings_(settings), project_(project) {}

  void convert(const std::string& listedName);

 private:
  /// Takes over the calls that the trace at `path` holds; false, with a message, when it can not be
  /// read. `path` loses a final ".gz".
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
  return true;
}

void Batch::convert(const std::string& listedName) {
  Tessaly::String name(listedName.c_str());
  deriveSampleName(name, settings_.stripExtensions);

  const Tessaly::String phdFile = project_.phdPath() + name + ".phd.1";
  if (!settings_.overwrite && Tessaly::Directory::exists(phdFile)) return;

  Tessaly::String path = project_.chromatPath() + listedName.c_str();
  TraceContent content;
  if (!read(path, content)) return;
  if (!hasQualities(bases_, qualities_)) {
    std::cout << "Warning: missing quality values in trace file " << path << " - skipping."
              << std::endl;
    return;
  }

  // One writer for both: when the first file fails, nothing gets into the second.
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
  const std::vector<std::string> names = listNames(settings_, chromatPath_);
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
