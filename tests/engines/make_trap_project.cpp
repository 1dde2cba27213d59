// Makes the project that the engines divide: make_trap_project FOLDER [SEED]. Beside it, in
// FOLDER/notes, are the list files shuffled.list and half.list, and torn_by_shell: names and their
// twins, each ended by a zero byte.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/trap_project.h"

namespace {

namespace fs = std::filesystem;

void writeTexts(const fs::path& path, const std::vector<std::string>& texts, char end) {
  std::ofstream stream(path, std::ios::binary);
  for (const std::string& text : texts) stream << text << end;
  stream.close();
  if (!stream) throw std::runtime_error("can not write " + path.string());
}

void makeProject(const fs::path& root, std::uint32_t seed) {
  const TrapNotes notes = makeTrapProject(root, seed);
  std::vector<std::string> torn;
  for (const auto& [name, twin] : notes.tornByShell) torn.insert(torn.end(), {name, twin});
  const fs::path folder = root / "notes";
  fs::create_directory(folder);
  writeTexts(folder / "shuffled.list", notes.shuffled, '\n');
  writeTexts(folder / "half.list", notes.half, '\n');
  writeTexts(folder / "torn_by_shell", torn, '\0');
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: make_trap_project FOLDER [SEED]\n";
    return 2;
  }
  try {
    makeProject(argv[1], static_cast<std::uint32_t>(argc == 3 ? std::stoul(argv[2]) : 1));
  } catch (const std::exception& problem) {
    std::cerr << "make_trap_project: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}
