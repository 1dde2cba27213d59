#include "tests/support/trap_project.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <sys/stat.h>

#include "tests/support/trap_traces.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t ordinaryCount = 2800;
constexpr std::size_t placeholderCount = 56;
constexpr std::size_t slotsPerSharedKind = 3;
constexpr std::size_t longestName = 255;  // bytes, of a file

std::string numbered(int number) {
  const std::string digits = std::to_string(number);
  return std::string(4 - std::min<std::size_t>(digits.size(), 4), '0') + digits;
}

/// Makes the files of one project, slot by slot. The names of a slot begin with its number, so that
/// slots follow each other in the converter's order.
class TrapMaker : public TrapTraces {
 public:
  TrapMaker(const fs::path& root, std::uint32_t seed)
      : TrapTraces(seed), root_(fs::absolute(root)), chromats_(root_ / "chromat_dir") {}

  TrapNotes make();

 private:
  using Kind = std::function<void(TrapMaker&, const std::string& start)>;
  static const std::vector<Kind>& oddKinds();
  static const std::vector<Kind>& sharedSamples();

  // Files.
  void put(const std::string& name, const std::string& bytes);
  void link(const std::string& name, const fs::path& target);
  fs::path linked(const std::string& name, const std::string& bytes);

  void ordinary(const std::string& start);
  void tornByShell(const std::string& start, const std::string& part);
  void endChunk();
  void shuffleChunks();

  fs::path root_;
  fs::path chromats_;
  std::vector<std::string> chunk_;  // listable names of the slots since the last endChunk()
  std::vector<std::vector<std::string>> chunks_;
  bool listable_ = true;
  TrapNotes notes_;
};

void TrapMaker::put(const std::string& name, const std::string& bytes) {
  std::ofstream stream(chromats_ / name, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + name);
  const bool isWord = name.find_first_of(" \t\n\v\f\r") == std::string::npos;
  if (listable_ && isWord) chunk_.push_back(name);
}

void TrapMaker::link(const std::string& name, const fs::path& target) {
  fs::create_symlink(target, chromats_ / name);
  chunk_.push_back(name);
}

/// A file outside chromat_dir; its path.
fs::path TrapMaker::linked(const std::string& name, const std::string& bytes) {
  const fs::path path = root_ / "linked" / name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

void TrapMaker::ordinary(const std::string& start) {
  static const std::vector<std::string> endings{".ab1", ".ab1", ".abi", ".scf", "", ".seq", ".ab"};
  const std::string& ending = anyOf(endings);
  const std::string bytes = below(40) == 0 ? damaged() : below(40) == 0 ? refused() : called();
  if (below(9) == 0) {
    put(start + ending + ".gz", gzip(bytes));
  } else {
    put(start + ending, bytes);
  }
}

/// A gzipped trace with `part` in its name, and its twin. The twin holds calls: where only one of
/// plain run and shard reads the gzipped trace, what comes after is the same even so.
void TrapMaker::tornByShell(const std::string& start, const std::string& part) {
  const std::string bytes = called();
  const std::string torn = start + "a" + part + "b.ab1.gz";
  const std::string twin = start + "z.ab1";
  listable_ = false;
  put(torn, gzip(bytes));
  listable_ = true;
  put(twin, bytes);
  notes_.tornByShell.emplace_back(torn, twin);
}

/// Each makes the odd files of a slot; the next slot holds no calls.
const std::vector<TrapMaker::Kind>& TrapMaker::oddKinds() {
  using Make = TrapMaker&;
  using Start = const std::string&;
  static const std::string longPart(longestName, 'l');
  const auto fill = [](Start start, const std::string& ending, std::size_t size) {
    return start + longPart.substr(0, size - start.size() - ending.size()) + ending;
  };
  static const std::vector<Kind> all{
      // Gzip.
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(make.called())); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", inTwoMembers(make.called())); },
      [](Make make, Start start) {  // cut in the middle of much data
        const std::string packed = gzip(make.calledScf(1500));
        make.put(start + ".scf.gz", packed.substr(0, packed.size() * 2 / 3));
      },
      [](Make make, Start start) {
        const std::string packed = gzip(make.calledScf(30));
        make.put(start + ".scf.gz", packed.substr(0, packed.size() / 2));
      },
      [](Make make, Start start) {  // cut in the last bytes
        const std::string packed = gzip(make.called());
        make.put(start + ".ab1.gz", packed.substr(0, packed.size() - 3));
      },
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(make.called()).substr(0, 7)); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", ""); },
      [](Make make, Start start) {  // the second member is cut
        const std::string packed = inTwoMembers(make.calledScf(35));
        make.put(start + ".scf.gz", packed.substr(0, packed.size() - 40));
      },
      [](Make make, Start start) {  // wrong checksum
        const std::string packed = gzip(make.called());
        make.put(start + ".ab1.gz", withFlippedByte(packed, packed.size() - checksumFromEnd));
      },
      [](Make make, Start start) {  // the same, of more than one buffer
        const std::string packed = gzip(make.calledScf(1500));
        make.put(start + ".scf.gz", withFlippedByte(packed, packed.size() - checksumFromEnd));
      },
      [](Make make, Start start) {  // wrong length
        const std::string packed = gzip(make.called());
        make.put(start + ".ab1.gz", withFlippedByte(packed, packed.size() - lengthFromEnd));
      },
      [](Make make, Start start) {  // damaged in the middle
        const std::string packed = gzip(make.calledScf(1500));
        make.put(start + ".scf.gz", withFlippedByte(packed, packed.size() * 3 / 4));
      },
      [](Make make, Start start) {
        make.put(start + ".ab1.gz", gzip(make.called()) + "garbage after the end");
      },
      [](Make make, Start start) {  // garbage that begins as a member does
        make.put(start + ".ab1.gz", gzip(make.called()) + "\x1f\x8b\x08 and no more");
      },
      [](Make make, Start start) {  // gunzip passes on what follows: here the rest of the trace
        const std::string bytes = make.calledScf(35);
        const std::size_t half = bytes.size() / 2;
        make.put(start + ".scf.gz", gzip(bytes.substr(0, half)) + bytes.substr(half));
      },
      [](Make make, Start start) {
        make.put(start + ".ab1.gz", gzip(make.called()) + std::string(512, '\0'));
      },
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(gzip(make.called()))); },
      [](Make make, Start start) { make.put(start + ".ab1.gz.gz", gzip(make.called())); },
      [](Make make, Start start) { make.put(start + ".ab1.gz.gz", gzip(gzip(make.called()))); },
      [](Make make, Start start) {
        make.put(start + ".ab1.gz", gzip(make.called()));
        make.put(start + ".ab1.gz.gz", gzip(make.called()));
      },
      [](Make make, Start start) { make.put(start + ".ab1.gz", make.called()); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", make.damaged()); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(make.damaged())); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(make.withoutCalls())); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(make.withPlaceholders())); },
      [](Make make, Start start) { make.put(start + ".ab1.gz", gzip(make.refused())); },
      [](Make make, Start start) { make.put(start + ".ab1.GZ", gzip(make.called())); },
      [](Make make, Start start) { make.put(start + ".ab1.GZ", make.called()); },
      // Unpacked under its name without ".gz", the last would come before the others.
      [](Make make, Start start) {
        make.put(start + ".ab1-1.ab1", make.called());
        make.put(start + ".ab1.gz", gzip(make.called()));
      },
      [](Make make, Start start) {
        make.put(start + "-1.scf.gz", gzip(make.called()));
        make.put(start + "-2.scf", make.withPlaceholders());
        make.put(start + ".gz", gzip(make.called()));
      },
      [](Make make, Start start) {
        make.put(start + ".ab1", make.called());
        make.put(start + ".ab1-1.ab1", make.called());
        make.put(start + ".ab1.gz", gzip(make.called()));
      },
      // Bytes that a run hands on or does not.
      [](Make make, Start start) { make.put(start + ".ab1", make.damaged()); },
      [](Make make, Start start) { make.put(start + ".ab1", make.refused()); },
      [](Make make, Start start) { make.put(start + ".ab1", make.withPlaceholders()); },
      [](Make make, Start start) { make.put(start + ".scf", make.withoutCalls()); },
      // Names.
      [](Make make, Start start) { make.put(start + " with blanks .ab1", make.called()); },
      [](Make make, Start start) {  // before all others, so not followed by the next slot
        make.put(' ' + start + ".ab1", make.called());
        make.put(' ' + start + "z.ab1", make.withoutCalls());
      },
      [](Make make, Start start) { make.put(start + "\ttab\r.ab1", make.called()); },
      [](Make make, Start start) { make.put(start + "\nline feeds\n\n.ab1", make.called()); },
      [](Make make, Start start) { make.put(start + "\nof no use.ab1", make.damaged()); },
      // Takes its message apart where one looks for lines.
      [](Make make, Start start) {
        make.put(start + " - skipping.\n  50% done\nERROR: invalid trace file x.ab1",
                 make.damaged());
      },
      [](Make make, Start start) {
        make.put(start + "\n\nWarning: missing quality values\nin it.ab1", make.refused());
      },
      [](Make make, Start start) { make.put(start + "'quotes\".ab1", make.called()); },
      [](Make make, Start start) { make.put(start + "\\back\\slash\\n.ab1", make.called()); },
      [](Make make, Start start) { make.put(start + "$(x)`y`;&|<>.ab1", make.called()); },
      [](Make make, Start start) {
        make.put('-' + start + ".ab1", make.called());
        make.put('-' + start + "z.ab1", make.withoutCalls());
      },
      [](Make make, Start start) {
        make.put("--" + start + ".ab1.gz", gzip(make.called()));
        make.put("--" + start + "z.ab1", make.withoutCalls());
      },
      [](Make make, Start start) { make.put(start + "\xE4\xFF\x80.ab1", make.called()); },
      [](Make make, Start start) {
        make.put(start + "*?%[a]{1,2}!#~.ab1.gz", gzip(make.called()));
      },
      [fill](Make make, Start start) {  // the longest sample with results
        make.put(fill(start, ".ab1", longestName - 2), make.called());
      },
      [fill](Make make, Start start) {
        make.put(fill(start, ".ab1.gz", longestName), gzip(make.called()));
      },
      [fill](Make make, Start start) {  // samples whose .phd.1 can not be named
        make.put(fill(start, ".ab1", longestName), make.called());
      },
      [fill](Make make, Start start) {
        make.put(fill(start, ".seq.gz", longestName - 1), gzip(make.called()));
      },
      [fill](Make make, Start start) {
        make.put(fill(start, ".ab1", longestName), make.damaged());
      },
      // Entries that are no files of chromat_dir.
      [](Make make, Start start) { make.put('.' + start + ".ab1", make.called()); },
      [](Make make, Start start) { make.put('.' + start + ".ab1.gz", gzip(make.called())); },
      [](Make make, Start start) {
        fs::create_directory(make.chromats_ / (start + ".ab1"));
        make.put(start + ".ab1/inside.ab1", make.called());
        make.chunk_.back() = start + ".ab1";
      },
      [](Make make, Start start) { make.link(start + ".ab1", "nowhere/" + start); },
      [](Make make, Start start) {
        make.link(start + ".ab1",
                  fs::path("../linked") / make.linked(start, make.called()).filename());
      },
      [](Make make, Start start) {
        make.link(start + ".ab1.gz", make.linked(start + " b", gzip(make.called())));
      },
      [](Make make, Start start) {  // a link to a link
        const fs::path target = make.linked(start + ".gz", gzip(make.called()));
        fs::create_symlink(target, make.root_ / "linked" / (start + "l"));
        make.link(start + "l.ab1.gz", make.root_ / "linked" / (start + "l"));
      },
      [](Make make, Start start) {  // gzipped, and its own name does not say so
        make.link(start + ".ab1", make.linked(start + ".ab1.gz", gzip(make.called())));
      },
      [](Make make, Start start) {
        if (mkfifo((make.chromats_ / (start + ".ab1")).c_str(), 0600) != 0) {
          throw std::runtime_error("can not make a pipe");
        }
        make.chunk_.push_back(start + ".ab1");
      },
  };
  return all;
}

/// Samples of two or three names.
const std::vector<TrapMaker::Kind>& TrapMaker::sharedSamples() {
  using Make = TrapMaker&;
  using Start = const std::string&;
  static const auto spread = [](Make make, Start start, int count) {
    make.put(start, make.damaged());
    for (int i = 0; i < count; ++i) {
      make.put(start + '-' + numbered(i) + ".ab1",
               i % 7 == 3 ? make.withoutCalls() : make.called());
    }
    make.put(start + ".ab1", make.called());
  };
  static const std::vector<Kind> all{
      [](Make make, Start start) {
        make.put(start + ".ab1", make.called());
        make.put(start + ".scf", make.called());
      },
      [](Make make, Start start) {
        make.put(start + ".ab1", make.damaged());
        make.put(start + ".abi", make.withoutCalls());
        make.put(start + ".scf", make.called());
      },
      [](Make make, Start start) {
        make.put(start + ".ab1", make.refused());
        make.put(start + ".scf", make.withPlaceholders());
      },
      [](Make make, Start start) {
        make.put(start + ".ab1", make.damaged());
        make.put(start + ".ab1.gz", gzip(make.called()));
      },
      [](Make make, Start start) {
        make.put(start + ".ab1", make.called());
        make.put(start + ".ab1.gz", gzip(make.called()));
      },
      [](Make make, Start start) {
        make.put(start + ".ab1.gz", gzip(make.called()));
        make.put(start + ".scf.gz", gzip(make.called()));
      },
      [](Make make, Start start) {
        make.put(start + ".abi", make.withoutCalls());
        make.put(start + ".scf.gz", gzip(make.called()));
      },
      [](Make make, Start start) {
        make.put(start + ".ab1", make.refused());
        make.put(start + ".abi", make.called());
        make.put(start + ".scf", make.damaged());
      },
      [](Make make, Start start) { spread(make, start, 3); },
      [](Make make, Start start) { spread(make, start, 40); },
  };
  return all;
}

void TrapMaker::endChunk() {
  shuffle(chunk_);
  for (std::size_t i = chunk_.size() / 8; i > 0; --i) {
    const std::string again = anyOf(chunk_);
    chunk_.push_back(again);
  }
  if (below(3) == 0) chunk_.push_back("absent" + numbered(between(0, 20)) + ".ab1");
  if (below(6) == 0) chunk_.push_back("absent" + numbered(between(0, 20)) + ".ab1.gz");
  for (std::string& name : chunk_) {  // found as well without its ".gz", where only that is there
    if (name.ends_with(".gz") && below(3) == 0) name.resize(name.size() - 3);
  }
  chunks_.push_back(std::move(chunk_));
  chunk_.clear();
}

void TrapMaker::shuffleChunks() {
  put(".ab1", called());
  put(".gz", gzip(called()));
  chunk_.insert(chunk_.end(), {"..gz", "-", "..."});  // these are not there
  chunks_.push_back(std::move(chunk_));
  shuffle(chunks_);
  for (const std::vector<std::string>& chunk : chunks_) {
    notes_.shuffled.insert(notes_.shuffled.end(), chunk.begin(), chunk.end());
    for (const std::string& name : chunk) {
      if (below(2) == 0) notes_.half.push_back(name);
    }
  }
}

TrapNotes TrapMaker::make() {
  for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir", "linked"}) {
    fs::create_directories(root_ / name);
  }
  constexpr int slotsPerChunk = 16;
  static const std::vector<std::string> tearing{" ",  "\t", "\n", "'", "\"",
                                                "$y", ";",  "<",  "(", "\\"};

  // What the slots hold, in a shuffled order; the rest of them is ordinary.
  enum class Content { ordinary, odd, shared, torn, placeholders };
  std::vector<std::pair<Content, std::size_t>> order;
  const auto add = [&order](Content content, std::size_t count, std::size_t kindCount) {
    for (std::size_t i = 0; i < count; ++i) order.emplace_back(content, i % kindCount);
  };
  add(Content::odd, oddKinds().size(), oddKinds().size());
  add(Content::shared, slotsPerSharedKind * sharedSamples().size(), sharedSamples().size());
  add(Content::torn, tearing.size(), tearing.size());
  add(Content::placeholders, placeholderCount, 1);
  add(Content::ordinary, ordinaryCount, 1);
  shuffle(order);

  int slot = 0;
  const auto nextSlot = [&slot] { return 't' + numbered(slot++); };
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto [content, kind] = order[i];
    const std::string start = nextSlot();
    switch (content) {
      case Content::ordinary:
        ordinary(start);
        break;
      case Content::odd:
        oddKinds()[kind](*this, start);
        put(nextSlot() + ".ab1", withoutCalls());
        break;
      case Content::shared:
        sharedSamples()[kind](*this, start);
        break;
      case Content::torn:
        tornByShell(start, tearing[kind]);
        break;
      case Content::placeholders:
        put(start + ".ab1", withPlaceholders());
        break;
    }
    if (i % slotsPerChunk == slotsPerChunk - 1) endChunk();
  }
  endChunk();
  shuffleChunks();
  return std::move(notes_);
}

}  // namespace

TrapNotes makeTrapProject(const std::filesystem::path& root, std::uint32_t seed) {
  return TrapMaker(root, seed).make();
}
