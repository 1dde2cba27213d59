#include "app/freed_memory.h"

#include <cstdlib>  // defines __GLIBC__

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Quillet {

void keepFreedMemory() {
#ifdef __GLIBC__  // other C libraries have no such setting
  constexpr int mebibyte = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, mebibyte);      // larger blocks still come and go one by one
  mallopt(M_TRIM_THRESHOLD, 4 * mebibyte);  // so much is kept
#endif
}

}  // namespace Quillet
