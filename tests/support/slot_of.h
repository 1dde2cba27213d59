#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// The slot of a virtual operation: `slotOf<bool(const char*)>(&Class::operation)`. A destructor
/// takes two slots.
///
/// In the C++ ABI of both compilers on Linux, the first word of a pointer to a virtual operation is
/// its byte offset in the table of virtual operations, plus 1 on some machines.
template <typename Signature, typename Class>
std::size_t slotOf(Signature Class::*operation) {
  std::uintptr_t word = 0;
  std::memcpy(&word, &operation, sizeof word);
  return word / sizeof(void*);
}
