#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Slot of a virtual operation, given as `slotOf<bool(const char*)>(&Class::operation)`; a
/// destructor that stands first takes the slots 0 and 1.
///
/// In the C++ ABI of both compilers on Linux, the first word of a pointer to a virtual operation is
/// its offset into the table in bytes, plus 1 on some machines.
template <typename Signature, typename Class>
std::size_t slotOf(Signature Class::*operation) {
  std::uintptr_t word = 0;
  std::memcpy(&word, &operation, sizeof word);
  return word / sizeof(void*);
}
