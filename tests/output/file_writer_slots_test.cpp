#include "output/file_writer.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "output/trace_writer.h"

// The order of the virtual operations, which TraceWriter inherits unchanged.

namespace {

using Tessaly::FileWriter;
using Tessaly::String;

/// The slot of a virtual operation. In the C++ ABI of both compilers on Linux, the first word of a
/// pointer to one is its byte offset in the table of virtual operations, plus 1 on some machines.
template <typename Signature>
std::size_t slotOf(Signature FileWriter::*operation) {
  std::uintptr_t word = 0;
  std::memcpy(&word, &operation, sizeof word);
  return word / sizeof(void*);
}

constexpr std::size_t destructorSlots = 2;  // the destructor takes the first two entries
constexpr std::size_t operationCount = 58;

/// The addresses in the table after the destructor's entries. In the same ABI an object with
/// virtual operations starts with a pointer to its table.
std::vector<std::uintptr_t> operationsOf(const FileWriter& writer) {
  const std::uintptr_t* table = nullptr;
  std::memcpy(&table, static_cast<const void*>(&writer), sizeof table);
  return {table + destructorSlots, table + destructorSlots + operationCount};
}

TEST(FileWriter, VirtualOperationsStandInTheirFixedOrder) {
  using W = FileWriter;
  const std::vector<std::size_t> slots = {
      slotOf<bool(const String&)>(&W::open),
      slotOf<bool(const char*)>(&W::open),
      slotOf<bool(const String&)>(&W::openAppend),
      slotOf<bool(const char*)>(&W::openAppend),
      slotOf<void()>(&W::close),
      slotOf<bool(const String&)>(&W::exists),
      slotOf<bool(const char*)>(&W::exists),
      slotOf<void(const String&)>(&W::write),
      slotOf<void(const char*)>(&W::write),
      slotOf<void(char)>(&W::write),
      slotOf<void(std::int32_t)>(&W::write),
      slotOf<void(double)>(&W::write),
      slotOf<void()>(&W::newline),
      slotOf<void(const String&)>(&W::writeLine),
      slotOf<void(const char*)>(&W::writeLine),
      slotOf<void(char)>(&W::writeLine),
      slotOf<void(std::int32_t)>(&W::writeLine),
      slotOf<void(double)>(&W::writeLine),
      slotOf<void(const String&)>(&W::writeWord),
      slotOf<void(const char*)>(&W::writeWord),
      slotOf<void(char)>(&W::writeWord),
      slotOf<void(std::int32_t)>(&W::writeWord),
      slotOf<void(double)>(&W::writeWord),
      slotOf<void(const String&, char)>(&W::writeWithSeparator),
      slotOf<void(const char*, char)>(&W::writeWithSeparator),
      slotOf<void(char, char)>(&W::writeWithSeparator),
      slotOf<void(std::int32_t, char)>(&W::writeWithSeparator),
      slotOf<void(double, char)>(&W::writeWithSeparator),
      slotOf<void(char)>(&W::writeByte),
      slotOf<void(const char*, std::int32_t)>(&W::writeBytes),
      slotOf<void(unsigned char)>(&W::writeByte),
      slotOf<void(const unsigned char*, std::int32_t)>(&W::writeBytes),
      slotOf<void(std::int16_t)>(&W::writeBigEndian),
      slotOf<void(const std::int16_t*, std::int32_t)>(&W::writeBigEndian),
      slotOf<void(std::uint16_t)>(&W::writeBigEndian),
      slotOf<void(const std::uint16_t*, std::int32_t)>(&W::writeBigEndian),
      slotOf<void(std::int32_t)>(&W::writeBigEndian),
      slotOf<void(const std::int32_t*, std::int32_t)>(&W::writeBigEndian),
      slotOf<void(std::uint32_t)>(&W::writeBigEndian),
      slotOf<void(const std::uint32_t*, std::int32_t)>(&W::writeBigEndian),
      slotOf<void(float)>(&W::writeNative),
      slotOf<void(const float*, std::int32_t)>(&W::writeNative),
      slotOf<void(double)>(&W::writeNative),
      slotOf<void(const double*, std::int32_t)>(&W::writeNative),
      slotOf<void(const String&)>(&W::writeTerminated),
      slotOf<void(const char*)>(&W::writeTerminated),
      slotOf<void(const String&, std::int32_t)>(&W::writeField),
      slotOf<void(const char*, std::int32_t)>(&W::writeField),
      slotOf<void(const String&, std::int32_t, bool)>(&W::writeAligned),
      slotOf<void(const char*, std::int32_t, bool)>(&W::writeAligned),
      slotOf<void(char, std::int32_t, bool)>(&W::writeAligned),
      slotOf<void(std::int32_t, std::int32_t, bool)>(&W::writeAligned),
      slotOf<void(double, std::int32_t, bool)>(&W::writeAligned),
      slotOf<W&(const String&)>(&W::operator<<),
      slotOf<W&(const char*)>(&W::operator<<),
      slotOf<W&(char)>(&W::operator<<),
      slotOf<W&(std::int32_t)>(&W::operator<<),
      slotOf<W&(double)>(&W::operator<<),
  };

  ASSERT_EQ(slots.size(), operationCount);
  for (std::size_t i = 0; i < slots.size(); ++i) {
    EXPECT_EQ(slots[i], destructorSlots + i) << "operation " << i;
  }
}

TEST(TraceWriter, InheritsEveryVirtualOperationButTheDestructor) {
  EXPECT_EQ(operationsOf(Quillet::TraceWriter()), operationsOf(FileWriter()));
}

}  // namespace
