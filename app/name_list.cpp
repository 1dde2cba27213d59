#include "app/name_list.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <utility>

#include "foundation/directory.h"

namespace Quillet {

std::vector<std::string> namesInStream(std::istream& stream) {
  std::vector<std::string> names;
  for (std::string line; std::getline(stream, line);) {
    const auto start = std::find_if_not(line.begin(), line.end(), Tessaly::isWhiteSpace);
    const auto end = std::find_if(start, line.end(), Tessaly::isWhiteSpace);
    if (start != end) {
      // Deliberate: a word that begins with a zero byte is an empty name, and counts.
      names.emplace_back(start, std::find(start, end, '\0'));
    }
  }
  return names;
}

std::optional<std::vector<std::string>> namesInFile(const Tessaly::String& listFile) {
  if (listFile == "-") return namesInStream(std::cin);
  std::ifstream stream(listFile.text());
  if (!stream.is_open()) return std::nullopt;
  return namesInStream(stream);
}

std::vector<std::string> namesInDirectory(const Tessaly::String& path) {
  return Tessaly::Directory(path.text()).files();
}

std::vector<std::string> namesOfRun(const Settings& settings, const Tessaly::String& chromatPath) {
  Tessaly::String listFile;
  if (!settings.listFile(listFile)) {
    return namesInDirectory(chromatPath);
  }
  std::optional<std::vector<std::string>> names = namesInFile(listFile);
  if (!names) {
    // Deliberate: no line end; what main prints next begins with one.
    std::cerr << "ERROR: can not open the file " << listFile;
    throw 1;
  }
  return *std::move(names);
}

}  // namespace Quillet
