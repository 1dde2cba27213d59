// Preloaded into a program, kills it in the middle of its work: by SIGKILL, in place of its Nth
// call that changes the file system. So a test can kill a program after every single step.
//
//   DIE_PROGRAM  the name of the program that it concerns; its children are others
//   DIE_AT       N, from 1; when it is missing, nothing is killed
//   DIE_COUNT    a file: the number of such calls is added to it as a line when the program ends

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::atomic<long> steps{0};

bool isConcerned() {
  static const bool concerned = [] {
    const char* program = std::getenv("DIE_PROGRAM");
    return program != nullptr && std::strcmp(program, program_invocation_short_name) == 0;
  }();
  return concerned;
}

void step() {
  if (!isConcerned()) return;
  static const char* const at = std::getenv("DIE_AT");
  if (++steps == (at == nullptr ? 0 : std::atol(at))) raise(SIGKILL);
}

/// The function of the C library that has the name and the type of `own`.
template <typename Function>
Function* theirs(const char* name, Function*) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

__attribute__((destructor)) void writeCount() {
  const char* path = std::getenv("DIE_COUNT");
  if (path == nullptr || !isConcerned()) return;
  const long count = steps;
  if (std::FILE* file = std::fopen(path, "a")) {
    std::fprintf(file, "%ld\n", count);
    std::fclose(file);
  }
}

}  // namespace

// The attributes in the system's declarations (non-null arguments and such) are not repeated.
#define STEP(name, ...)                             \
  step();                                           \
  static auto* const next = theirs(#name, &::name); \
  return next(__VA_ARGS__)

extern "C" {

int rename(const char* from, const char* to) noexcept { STEP(rename, from, to); }
int renameat(int a, const char* from, int b, const char* to) noexcept {
  STEP(renameat, a, from, b, to);
}
int renameat2(int a, const char* from, int b, const char* to, unsigned flags) noexcept {
  STEP(renameat2, a, from, b, to, flags);
}
int link(const char* from, const char* to) noexcept { STEP(link, from, to); }
int linkat(int a, const char* from, int b, const char* to, int flags) noexcept {
  STEP(linkat, a, from, b, to, flags);
}
int symlink(const char* to, const char* path) noexcept { STEP(symlink, to, path); }
int symlinkat(const char* to, int folder, const char* path) noexcept {
  STEP(symlinkat, to, folder, path);
}
int unlink(const char* path) noexcept { STEP(unlink, path); }
int unlinkat(int folder, const char* path, int flags) noexcept {
  STEP(unlinkat, folder, path, flags);
}
int remove(const char* path) noexcept { STEP(remove, path); }
int rmdir(const char* path) noexcept { STEP(rmdir, path); }
int mkdir(const char* path, mode_t mode) noexcept { STEP(mkdir, path, mode); }
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
  STEP(mkdirat, folder, path, mode);
}
char* mkdtemp(char* path) noexcept { STEP(mkdtemp, path); }
int fsync(int file) { STEP(fsync, file); }
ssize_t write(int file, const void* bytes, size_t count) { STEP(write, file, bytes, count); }

// The last argument is there only when a file can be made.
#define OPEN(name, ...)                             \
  mode_t mode = 0;                                  \
  if ((flags & (O_CREAT | O_TMPFILE)) != 0) {       \
    va_list rest;                                   \
    va_start(rest, flags);                          \
    mode = va_arg(rest, mode_t);                    \
    va_end(rest);                                   \
  }                                                 \
  if ((flags & O_CREAT) != 0) step();               \
  static auto* const next = theirs(#name, &::name); \
  return next(__VA_ARGS__, flags, mode)

int open(const char* path, int flags, ...) { OPEN(open, path); }
int open64(const char* path, int flags, ...) { OPEN(open64, path); }
int openat(int folder, const char* path, int flags, ...) { OPEN(openat, folder, path); }
int openat64(int folder, const char* path, int flags, ...) { OPEN(openat64, folder, path); }

}  // extern "C"
