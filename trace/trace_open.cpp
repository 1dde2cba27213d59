#include <cstdlib>

#include "foundation/scf_layout.h"
#include "trace/abif_layout.h"
#include "trace/trace_file.h"

namespace Quillet {

namespace {

// Waits for the shell. What became of the command shows in the file it leaves, not in its status.
void runInShell(const Tessaly::String& command) {
  [[maybe_unused]] const int exitStatus = std::system(command.text());
}

// Deliberate: the names reach the shell as they are, unquoted.
void unpack(const Tessaly::String& from, const Tessaly::String& to) {
  runInShell(Tessaly::String("gunzip -c -f ") + from + " > " + to);
}

void remove(const Tessaly::String& name) { runInShell(Tessaly::String("rm ") + name); }

}  // namespace

bool TraceFile::open(Tessaly::String& name) {
  status_ = 0;
  Tessaly::String path = directory_ + name;
  bool compressed = name.endsWith(".gz");
  if (compressed) {
    name.removeLast(3);  // found or not, shows in what comes out of it
  } else if (!FileReader::open(path) && !exists(path)) {
    path.append(".gz");
    compressed = exists(path);
    if (!compressed) {
      status_ = 1;
      return false;
    }
  }

  // A file that does not open has no known first bytes.
  if (compressed) {
    const Tessaly::String packed = path;
    path = tempName();
    unpack(packed, path);
    FileReader::open(path);
  }
  const bool read = readContent();
  close();
  if (compressed) remove(path);

  status_ = read ? 0 : 2;
  return read;
}

// The content alone decides: the extension of the name plays no part.
bool TraceFile::readContent() {
  constexpr std::int32_t magicSize = 4;
  Tessaly::String magic;
  readTextAt(ScfLayout::headerMagic, magic, magicSize);
  if (magic == ".scf") return readScf();
  static_assert(AbifLayout::headerMagic == ScfLayout::headerMagic);  // it is the text just read
  if (magic == "ABIF") return readAbif(0);
  readTextAt(AbifLayout::prefixSize + AbifLayout::headerMagic, magic, magicSize);
  if (magic == "ABIF") return readAbif(AbifLayout::prefixSize);
  return false;
}

}  // namespace Quillet
