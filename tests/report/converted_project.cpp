#include "tests/report/converted_project.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

constexpr int soundTraceCount = 64;
constexpr std::array<const char*, 3> folders{"chromat_dir", "phd_dir", "poly_dir"};

/// Replaces a field by a text that differs from it: another letter, or the next number.
std::string otherField(const std::string& field) {
  if (std::isdigit(static_cast<unsigned char>(field[0])) == 0) return field == "A" ? "C" : "A";
  return std::to_string(std::stoi(field) + 1);
}

/// `text` with one field of a line replaced; lines and fields count from `start`.
std::string withOtherField(const std::string& text, std::size_t start, int line, int field) {
  for (; line > 0; --line) start = text.find('\n', start) + 1;
  for (; field > 0; --field) start = text.find(' ', start) + 1;
  const std::size_t end = text.find_first_of(" \n", start);
  if (start == 0 || end == std::string::npos) throw std::runtime_error("no such field");
  return text.substr(0, start) + otherField(text.substr(start, end - start)) + text.substr(end);
}

std::string number(int i) { return (i < 10 ? "0" : "") + std::to_string(i); }

}  // namespace

ConvertedProject::ConvertedProject() {
  for (int i = 0; i < soundTraceCount; ++i) {
    // Pairs of neighbours have as many bases as each other.
    const TraceContents content =
        believableTrace(static_cast<std::uint32_t>(i + 1), 90 + i / 2 * 2);
    const std::string caller = "caller " + std::to_string(i / 8);
    const std::string comments = "BCAL=" + caller + '\n';
    const std::string plain = "s" + number(i);
    switch (i % 8) {
      case 0:
      case 1:
        addTrace(plain + ".ab1", content.abif().callerName(caller).build());
        traces_.push_back({plain + ".ab1", plain, content});
        break;
      case 2:
        addTrace(plain + ".scf", content.scf().comments(comments).build());
        traces_.push_back({plain + ".scf", plain, content});
        break;
      case 3:
        addTrace(plain + ".scf", content.scf().version("2.00").comments(comments).build());
        traces_.push_back({plain + ".scf", plain, content});
        break;
      case 4:
        addGzipped(plain + ".ab1.gz", content.abif().callerName(caller).prefix(128).build());
        traces_.push_back({plain + ".ab1.gz", plain, content});
        break;
      case 5:
        addGzipped(plain + ".scf.gz", content.scf().comments(comments).build());
        traces_.push_back({plain + ".scf.gz", plain, content});
        break;
      case 6:
        addTrace(plain + " a b.ab1", content.abif().callerName(caller).otherEntries(20).build());
        traces_.push_back({plain + " a b.ab1", plain + " a b", content});
        break;
      default:
        addTrace(plain + "'\"q\".scf", content.scf().comments(comments).build());
        traces_.push_back({plain + "'\"q\".scf", plain + "'\"q\"", content});
    }
  }

  TraceContents silent = believableTrace(100, 120);
  addTrace("t_no_calls.ab1", silent.abif().without("PBAS", 1).build());
  silent.bases.clear();
  silent.qualities.clear();
  traces_.push_back({"t_no_calls.ab1", "t_no_calls", silent});
  TraceContents unsure = believableTrace(101, 40);  // so few that no quality is asked for
  std::fill(unsure.qualities.begin(), unsure.qualities.end(), 5);
  addTrace("t_no_qualities.ab1", unsure.abif().build());
  traces_.push_back({"t_no_qualities.ab1", "t_no_qualities", unsure});

  // Alone, they take over nothing.
  convert({"t_no_calls.ab1"});
  convert({"t_no_qualities.ab1"});
  if (run().status != 0) throw std::runtime_error("the converter failed");
  if (entries("phd_dir").size() != traces_.size()) throw std::runtime_error("not all converted");
  fs::create_directory(path() / "kept");
  for (const char* folder : folders) {
    fs::copy(path() / folder, path() / "kept" / folder, fs::copy_options::recursive);
  }
}

const ConvertedProject::Trace& ConvertedProject::trace(const std::string& sample) const {
  return *std::find_if(traces_.begin(), traces_.end(),
                       [&](const Trace& each) { return each.sample == sample; });
}

void ConvertedProject::restore() const {
  for (const char* folder : folders) {
    fs::remove_all(path() / folder);
    fs::copy(path() / "kept" / folder, path() / folder, fs::copy_options::recursive);
  }
}

void ConvertedProject::remove(const std::string& name) const {
  if (!fs::remove(path() / name)) throw std::runtime_error("no file " + name);
}

void ConvertedProject::cut(const std::string& name, std::size_t size) const {
  if (size >= fs::file_size(path() / name)) throw std::runtime_error("no cut of " + name);
  fs::resize_file(path() / name, size);
}

void ConvertedProject::swap(const std::string& one, const std::string& other) const {
  const std::string bytes = read(one);
  write(one, read(other));
  write(other, bytes);
}

void ConvertedProject::changePhd(const std::string& sample, int base, int field) const {
  const std::string text = phd(sample);
  const std::string start = "\nBEGIN_DNA\n";
  write(phdName(sample), withOtherField(text, text.find(start) + start.size(), base, field));
}

void ConvertedProject::changePoly(const std::string& sample, int base, int field) const {
  write(polyName(sample), withOtherField(poly(sample), 0, base + 1, field));
}

void ConvertedProject::replace(const std::string& name, const std::string& from,
                               const std::string& to) const {
  std::string text = read(name);
  const std::size_t found = text.find(from);
  if (found == std::string::npos) throw std::runtime_error("nothing to replace in " + name);
  write(name, text.replace(found, from.size(), to));
}

void ConvertedProject::convert(const std::vector<std::string>& names) const {
  if (runList(names, {"-o"}).status != 0) throw std::runtime_error("the converter failed");
}
