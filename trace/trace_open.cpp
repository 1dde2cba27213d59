#include <cstdlib>

#include "trace/abif_layout.h"
#include "trace/abif_reader.h"
#include "trace/scf_reader.h"
#include "trace/trace_file.h"

namespace Quillet {

namespace {

/// Runs a shell command and waits for it. The exit status is ignored: a failed unpack leaves an
/// unreadable file.
void runInShell(const Tessaly::String& command) {
  [[maybe_unused]] const int exitStatus = std::system(command.text());
}

/// Unpacks a gzip file. Deliberate: the names reach the shell unquoted.
void unpack(const Tessaly::String& from, const Tessaly::String& to) {
  runInShell(Tessaly::String("gunzip -c -f ") + from + " > " + to);
}

void remove(const Tessaly::String& name) { runInShell(Tessaly::String("rm ") + name); }

/// Reads the open file. Its first bytes choose the reader; the extension of its name does not
/// matter.
TraceContent readContent(Tessaly::FileReader& file) {
  constexpr std::int32_t magicSize = 4;
  Tessaly::String magic;
  file.readTextAt(0, magic, magicSize);
  if (magic == ".scf") return readScf(file);
  if (magic == "ABIF") return readAbif(file, 0);
  file.readTextAt(AbifLayout::prefixSize + AbifLayout::headerMagic, magic, magicSize);
  if (magic == "ABIF") return readAbif(file, AbifLayout::prefixSize);
  return TraceContent(TraceFault::notATrace);
}

}  // namespace

bool TraceFile::open(Tessaly::String& name) {
  Tessaly::String path = directory_ + name;
  bool compressed = name.endsWith(".gz");
  if (compressed) {
    name.removeLast(3);  // not checked: the unpacked copy of a missing file is empty
  } else if (!FileReader::open(path) && !exists(path)) {
    path.append(".gz");
    compressed = exists(path);
    if (!compressed) {
      content_ = TraceContent(TraceFault::notFound);
      status_ = 1;
      return false;
    }
  }

  if (compressed) {
    const Tessaly::String packed = path;
    path = tempName();
    unpack(packed, path);
    FileReader::open(path);
  }
  // A file that did not open reads as empty, which is no trace.
  content_ = readContent(*this);
  close();
  if (compressed) remove(path);

  status_ = content_.fault == TraceFault::none ? 0 : 2;
  return status_ == 0;
}

bool TraceFile::open(const char* name) {
  Tessaly::String changed(name);
  return open(changed);
}

}  // namespace Quillet
