#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/trace_generator.h"
#include "tests/trace/opened_trace.h"

namespace {

void expectSameTrace(const OpenedTrace& left, const OpenedTrace& right) {
  ASSERT_TRUE(left.read);
  ASSERT_TRUE(right.read);
  EXPECT_EQ(left.a, right.a);
  EXPECT_EQ(left.c, right.c);
  EXPECT_EQ(left.g, right.g);
  EXPECT_EQ(left.t, right.t);
  EXPECT_EQ(left.bases, right.bases);
  EXPECT_EQ(left.usable, right.usable);
  EXPECT_EQ(left.qualities, right.qualities);
  EXPECT_EQ(left.peaks, right.peaks);
}

TEST(TraceFormatsAgree, AbifInEveryBaseOrderWithAndWithoutAHeaderInFrontAndScf) {
  const ScratchFolder folder;
  std::string order = "ACGT";
  unsigned seed = 1;
  do {
    for (int round = 0; round < 10; ++round, ++seed) {  // 24 orders: 240 traces
      const TraceContents contents =
          randomTrace(seed, 10 + static_cast<int>(seed * 37 % 1500),
                      1 + static_cast<int>(seed * 11 % 90), round % 2 == 0 ? 65535 : 300);
      SCOPED_TRACE(order + ", seed " + std::to_string(seed));

      const OpenedTrace scf = openBytes(folder, contents.scf().build());
      const OpenedTrace abif = openBytes(folder, contents.abif().baseOrder(order).build());
      const OpenedTrace prefixed =
          openBytes(folder, contents.abif().baseOrder(order).prefix(128).build());

      ASSERT_NO_FATAL_FAILURE(expectSameTrace(scf, abif));
      ASSERT_NO_FATAL_FAILURE(expectSameTrace(scf, prefixed));
      // And all of them equal the contents.
      EXPECT_EQ(abif.bases, contents.bases);
      EXPECT_TRUE(std::equal(abif.a.begin(), abif.a.end(), contents.channels[0].begin(),
                             contents.channels[0].end()));
    }
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(seed, 241u);
}

}  // namespace
