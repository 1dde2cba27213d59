#include "foundation/big_endian.h"

#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;

TEST(BigEndian, TheMostSignificantByteStandsFirst) {
  unsigned char two[2];
  unsigned char four[4];

  Tessaly::putBigEndian16(two, 0x0102);
  Tessaly::putBigEndian32(four, 0x01020384);

  EXPECT_THAT(two, ElementsAre(1, 2));
  EXPECT_THAT(four, ElementsAre(1, 2, 3, 0x84));
}

TEST(BigEndian, NumbersComeOutOfTheirBytesAgain) {
  const unsigned char bytes[] = {0x81, 2, 3, 0x84};

  EXPECT_EQ(Tessaly::bigEndian16(bytes), 0x8102);
  EXPECT_EQ(Tessaly::bigEndian16(bytes + 1), 0x0203);
  EXPECT_EQ(Tessaly::bigEndian32(bytes), 0x81020384);
}

}  // namespace
