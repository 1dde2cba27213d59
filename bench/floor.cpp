// The lower limit of a run's cost: the system calls for the files alone. bench/compare compares the
// converter with it.

#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t largestFile = 1 << 20;  // bytes

/// One trace, and the sizes of the two files that its conversion gives.
struct Task {
  std::string trace;
  std::string sample;
  std::size_t phdSize = 0;
  std::size_t polySize = 0;
};

std::vector<Task> readTasks(const char* path) {
  std::ifstream stream(path);
  std::vector<Task> tasks;
  for (Task task; stream >> task.trace >> task.sample >> task.phdSize >> task.polySize;) {
    tasks.push_back(task);
  }
  return tasks;
}

[[noreturn]] void fail(const std::string& path) { throw std::runtime_error("floor: " + path); }

void readFile(const std::string& path, char* bytes) {
  const int file = open(path.c_str(), O_RDONLY);
  if (file < 0 || read(file, bytes, largestFile) < 0) fail(path);
  close(file);
}

void writeFile(const std::string& path, const char* bytes, std::size_t size) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (file < 0 || write(file, bytes, size) != static_cast<ssize_t>(size)) fail(path);
  close(file);
}

/// Reads every trace with one read and writes each of its two results with one write.
void copyOnly(const std::string& root, const char* taskFile) {
  const auto bytes = std::make_unique_for_overwrite<char[]>(largestFile);
  for (const Task& task : readTasks(taskFile)) {
    readFile(root + "/chromat_dir/" + task.trace, bytes.get());
    writeFile(root + "/phd_dir/" + task.sample + ".phd.1", bytes.get(), task.phdSize);
    writeFile(root + "/poly_dir/" + task.sample + ".poly", bytes.get(), task.polySize);
  }
}

/// Runs the two commands that unpack a trace and remove the copy, and nothing else.
void commandsOnly(const std::string& root, const char* taskFile) {
  for (const Task& task : readTasks(taskFile)) {
    const std::string packed = root + "/chromat_dir/" + task.trace;
    if (std::system(("gunzip -c -f " + packed + " > temp").c_str()) != 0) fail(packed);
    if (std::system("rm temp") != 0) fail("temp");
  }
}

/// Lists the traces and looks up the result of each.
void askOnly(const std::string& root) {
  DIR* const directory = opendir((root + "/chromat_dir").c_str());
  if (directory == nullptr) fail(root);
  std::vector<std::string> names;
  while (const dirent* entry = readdir(directory)) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  closedir(directory);
  for (const std::string& name : names) {
    const std::string result = root + "/phd_dir/" + name.substr(0, name.rfind('.')) + ".phd.1";
    struct stat status;
    if (stat(result.c_str(), &status) != 0) fail(result);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  try {
    if (mode == "copy" && argc == 4) {
      copyOnly(argv[2], argv[3]);
    } else if (mode == "commands" && argc == 4) {
      commandsOnly(argv[2], argv[3]);
    } else if (mode == "ask" && argc == 3) {
      askOnly(argv[2]);
    } else {
      std::cerr << "usage: floor copy|commands FOLDER TASKS\n"
                   "       floor ask FOLDER\n";
      return 2;
    }
  } catch (const std::exception& problem) {
    std::cerr << problem.what() << '\n';
    return 1;
  }
  return 0;
}
