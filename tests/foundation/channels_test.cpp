#include "foundation/channels.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Channels, StandInTheOrderACGT) {
  EXPECT_EQ(Quillet::channelOf('A'), 0);
  EXPECT_EQ(Quillet::channelOf('C'), 1);
  EXPECT_EQ(Quillet::channelOf('G'), 2);
  EXPECT_EQ(Quillet::channelOf('T'), 3);
}

TEST(Channels, OnlyUpperCaseACGTHaveOne) {
  int withChannel = 0;
  for (int code = -128; code < 128; ++code) {
    if (Quillet::channelOf(static_cast<char>(code)) != Quillet::noChannel) ++withChannel;
  }

  EXPECT_EQ(withChannel, 4);
  for (const char other : {'a', 't', 'N', 'U', '-', '\0'}) {
    EXPECT_EQ(Quillet::channelOf(other), Quillet::noChannel) << other;
  }
}

TEST(Channels, EveryLetterLeadsBackToItsChannelAndNToNone) {
  EXPECT_EQ(std::string(Quillet::channelLetters), "ACGTN");
  for (int channel = 0; channel <= Quillet::noChannel; ++channel) {
    EXPECT_EQ(Quillet::channelOf(Quillet::channelLetters[channel]), channel);
  }
}

}  // namespace
