// Makes the project of a plate of 96 that tools/demo draws as a page: plate_project FOLDER.

#include "examples/plate.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;

namespace {

/// Writes a file anew; throws when the disk does not take it.
void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + path.string());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: plate_project FOLDER\n";
    return 2;
  }
  try {
    const fs::path root = argv[1];
    for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir"}) {
      fs::create_directories(root / name);
    }
    for (const PlateTrace& trace : plateOf96()) {
      writeFile(root / "chromat_dir" / (trace.sample + ".ab1"), trace.bytes);
    }
  } catch (const std::exception& problem) {
    std::cerr << "plate_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
