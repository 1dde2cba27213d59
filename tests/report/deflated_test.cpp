#include "report/deflated.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>
#include <zlib.h>

namespace {

/// What zlib makes of a stream that holds `size` bytes; "bad" where it holds others.
std::string inflated(const std::string& stream, std::size_t size) {
  std::string bytes(size, '\0');
  auto count = static_cast<uLongf>(size);
  const int status =
      uncompress(reinterpret_cast<Bytef*>(bytes.data()), &count,
                 reinterpret_cast<const Bytef*>(stream.data()), static_cast<uLong>(stream.size()));
  return status == Z_OK && count == size ? bytes : "bad";
}

std::string randomBytes(std::size_t size, unsigned choices) {
  std::mt19937 random(static_cast<unsigned>(size));
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(random() % choices);
  return bytes;
}

}  // namespace

TEST(Deflated, BytesComeBack) {
  for (const std::size_t size : {std::size_t{1}, std::size_t{32'767}, std::size_t{32'768},
                                 std::size_t{100'000}, std::size_t{3'000'000}}) {
    for (const unsigned choices : {1U, 5U, 256U}) {
      const std::string bytes = randomBytes(size, choices);
      EXPECT_TRUE(inflated(Quillet::deflated(bytes), size) == bytes) << size << ' ' << choices;
    }
  }
  // A stream has a head of 2 bytes and ends in 4 bytes, of which the checksum of nothing is 1.
  const std::string none = Quillet::deflated("");
  EXPECT_TRUE(none.starts_with("\x78")) << none;
  EXPECT_TRUE(none.ends_with(std::string("\0\0\0\1", 4)));
}

TEST(Deflated, BytesComeBackFromAnyCuts) {
  const std::string bytes = randomBytes(70'000, 9);
  const std::vector<std::vector<std::size_t>> trials{
      {0}, {70'000}, {1, 2, 3}, {35'000}, {0, 0, 35'000, 35'000, 70'000, 70'000}};
  for (const std::vector<std::size_t>& cuts : trials) {
    EXPECT_TRUE(inflated(Quillet::deflated(bytes, cuts), bytes.size()) == bytes) << cuts[0];
  }
  std::vector<std::size_t> everywhere;
  for (std::size_t i = 0; i <= 3000; ++i) everywhere.push_back(i);
  EXPECT_TRUE(inflated(Quillet::deflated(bytes, everywhere), bytes.size()) == bytes);
}

// The first half holds the values 0 to 15, the other one 128 to 143: apart they need four bits
// each, together five.
TEST(Deflated, ACutGivesEachKindCodesOfItsOwn) {
  std::string bytes = randomBytes(8000, 16);
  for (std::size_t i = 0; i < 8000; ++i) bytes += static_cast<char>(bytes[i] + 128);
  const std::vector<std::size_t> cuts{8000};

  EXPECT_LT(Quillet::deflated(bytes, cuts).size(), 8000U + 200U);
  EXPECT_GT(Quillet::deflated(bytes).size(), 10000U - 200U);
}

TEST(Deflated, RepeatedBytesTakeLittleRoom) {
  EXPECT_LT(Quillet::deflated(std::string(100'000, 'x')).size(), 500U);
}
