#include "examples/project_files.h"

#include <fstream>
#include <stdexcept>

void makeProjectFolders(const std::filesystem::path& root) {
  for (const char* name : {"chromat_dir", "phd_dir", "poly_dir", "edit_dir"}) {
    std::filesystem::create_directories(root / name);
  }
}

void writeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + path.string());
}
