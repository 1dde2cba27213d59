#include "tests/support/project_folder.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

/// The part of `text` between the first `start` and the next `end`; empty when one is missing.
std::string between(const std::string& text, const std::string& start, const std::string& end) {
  const std::size_t found = text.find(start);
  if (found == std::string::npos) return {};
  const std::size_t first = found + start.size();
  const std::size_t last = text.find(end, first);
  return last == std::string::npos ? std::string() : text.substr(first, last - first);
}

}  // namespace

ProjectFolder::ProjectFolder() {
  for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir"}) makeFolder(name);
}

void ProjectFolder::addTrace(const std::string& name, std::string_view bytes) const {
  write("chromat_dir/" + name, bytes);
}

void ProjectFolder::addGzipped(const std::string& name, const std::string& bytes) const {
  addTrace(name, gzipped(bytes));
}

ProgramResult ProjectFolder::run(std::vector<std::string> arguments,
                                 const std::string& input) const {
  return runQuillet({.folder = path().string(), .arguments = std::move(arguments), .input = input});
}

ProgramResult ProjectFolder::runList(const std::vector<std::string>& names,
                                     std::vector<std::string> arguments) const {
  std::string list;
  for (const std::string& name : names) list += name + '\n';
  write("names", list);
  arguments.insert(arguments.end(), {"-list", "names"});
  return run(std::move(arguments));
}

std::map<std::string, std::string> ProjectFolder::withGunzip(const std::string& script) const {
  write("bin/gunzip", "#!/bin/sh\n" + script);
  fs::permissions(path() / "bin/gunzip", fs::perms::owner_all);
  const char* rest = std::getenv("PATH");
  const std::string searchPath =
      (path() / "bin").string() + ':' + (rest != nullptr ? rest : "/usr/bin:/bin");
  return {{"PATH", searchPath}};
}

std::string ProjectFolder::phd(const std::string& sample) const {
  return read("phd_dir/" + sample + ".phd.1");
}

std::string ProjectFolder::timelessPhd(const std::string& sample) const {
  std::string text = phd(sample);
  const std::string start = "\nTIME: ";
  const std::size_t found = text.find(start);
  const std::size_t lineEnd = text.find('\n', found + start.size());
  if (found == std::string::npos || lineEnd == std::string::npos) return text;
  return text.replace(found, lineEnd - found, start + "@TIME@");
}

std::string ProjectFolder::phdTime(const std::string& sample) const {
  return between(phd(sample), "\nTIME: ", "\n");
}

std::string ProjectFolder::phdBases(const std::string& sample) const {
  return between(phd(sample), "\nBEGIN_DNA\n", "END_DNA\n");
}

std::string ProjectFolder::poly(const std::string& sample) const {
  return read("poly_dir/" + sample + ".poly");
}

std::vector<std::string> ProjectFolder::entries(const std::string& directory) const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(path() / directory)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string ProjectFolder::invalidTrace(const std::string& name) const {
  return "ERROR: invalid trace file " + path().string() + "/chromat_dir/" + name + " - skipping.\n";
}

std::string ProjectFolder::missingQualities(const std::string& name) const {
  return "Warning: missing quality values in trace file " + path().string() + "/chromat_dir/" +
         name + " - skipping.\n";
}

std::string gzipped(const std::string& bytes) {
  const ProgramResult result =
      runProgram("gzip", {.folder = "/", .arguments = {"-n", "-c"}, .input = bytes});
  if (result.status != 0) throw std::runtime_error("gzip failed: " + result.err);
  return result.out;
}

std::string gunzipComplaints(const ScratchFolder& folder, const std::string& words) {
  return runProgram("sh", {.folder = folder.path().string(),
                           .arguments = {"-c", "gunzip -c -f " + words + " > /dev/null"}})
      .err;
}

std::vector<std::string> momentTexts(std::time_t first, std::time_t last, const char* format) {
  std::vector<std::string> texts;
  for (std::time_t moment = first; moment <= last; ++moment) {
    char text[64];
    std::tm fields{};
    gmtime_r(&moment, &fields);
    texts.emplace_back(text, std::strftime(text, sizeof text, format, &fields));
  }
  return texts;
}

std::string meterLines(std::initializer_list<int> percentages) {
  std::string lines;
  for (const int percentage : percentages) {
    const std::string number = std::to_string(percentage);
    lines += std::string(4 - number.size(), ' ') + number + "% done\n";
  }
  return lines;
}
