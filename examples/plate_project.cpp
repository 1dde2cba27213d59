// Makes the project of a plate of 96 that tools/demo draws as a page: plate_project FOLDER.

#include "examples/plate.h"

#include <exception>
#include <filesystem>
#include <iostream>

#include "examples/project_files.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: plate_project FOLDER\n";
    return 2;
  }
  try {
    const fs::path root = argv[1];
    makeProjectFolders(root);
    for (const PlateTrace& trace : plateOf96()) {
      writeFile(root / "chromat_dir" / (trace.sample + ".ab1"), trace.bytes);
    }
  } catch (const std::exception& problem) {
    std::cerr << "plate_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
