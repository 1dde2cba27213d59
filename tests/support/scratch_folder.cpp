#include "tests/support/scratch_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() : former_(fs::current_path()) {
  std::string name = (fs::temp_directory_path() / "quillet-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder: " + name);
  path_ = fs::canonical(name);
  fs::current_path(path_);
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::current_path(former_, ignored);
  fs::remove_all(path_, ignored);
}

Tessaly::String ScratchFolder::at(const std::string& name) const {
  return Tessaly::String((path_ / name).c_str());
}

Tessaly::String ScratchFolder::write(const std::string& name, std::string_view bytes) const {
  const fs::path file = path_ / name;
  fs::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + file.string());
  return at(name);
}

std::string ScratchFolder::read(const std::string& name) const {
  std::ifstream stream(path_ / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void ScratchFolder::makeFolder(const std::string& name) const {
  fs::create_directories(path_ / name);
}

bool ScratchFolder::has(const std::string& name) const { return fs::exists(path_ / name); }
