#include <cstdint>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/trace_builder.h"
#include "tests/trace/opened_trace.h"

namespace {

using Quillet::TraceFault;

TEST(TraceFault, SaysWhyAFileIsNoTrace) {
  const std::string abif = AbifBuilder().build();
  struct Case {
    const char* what;
    std::string content;
    TraceFault fault;
  };
  const Case cases[] = {
      {"a whole ABIF file", abif, TraceFault::none},
      {"a whole SCF file", ScfBuilder().build(), TraceFault::none},
      {"nothing", "", TraceFault::notATrace},
      {"text", "AB1F text", TraceFault::notATrace},
      {"a header alone", abif.substr(0, 128), TraceFault::directoryCut},
      {"no FWO_", AbifBuilder().without("FWO_", 1).build(), TraceFault::noBaseOrder},
      {"another letter", AbifBuilder().baseOrder("GATX").build(), TraceFault::noBaseOrder},
      {"no DATA 9", AbifBuilder().without("DATA", 9).build(), TraceFault::noAnalysedChannels},
      {"no DATA 12", AbifBuilder().without("DATA", 12).build(), TraceFault::noAnalysedChannels},
      {"empty channels",
       AbifBuilder()
           .count("DATA", 9, 0)
           .count("DATA", 10, 0)
           .count("DATA", 11, 0)
           .count("DATA", 12, 0)
           .build(),
       TraceFault::noAnalysedChannels},
      {"PCON shorter", AbifBuilder().count("PCON", 1, 3).build(), TraceFault::callCountsDiffer},
      {"no PLOC", AbifBuilder().without("PLOC", 1).build(), TraceFault::callCountsDiffer},
      {"a channel at 2 GiB", AbifBuilder().dataOffset("DATA", 10, 0x80000000u).build(),
       TraceFault::dataBeyondFile},
      {"far too many SCF bases", ScfBuilder().header(12, 0x7FFFFFFF).build(),
       TraceFault::dataBeyondFile},
  };
  for (const Case& c : cases) {
    const OpenedTrace opened = openBytes(c.content);

    EXPECT_EQ(opened.fault, c.fault) << c.what;
    EXPECT_EQ(opened.isEmpty, c.fault != TraceFault::none) << c.what;
    EXPECT_EQ(opened.status, c.fault == TraceFault::none ? 0 : 2) << c.what;
  }
}

TEST(TraceFault, AChannelThatIsComparedAndDiffersIsNamed) {
  // The entry that ends the directory decides which channel is compared with DATA 9.
  EXPECT_EQ(openBytes(AbifBuilder().last("DATA", 11).count("DATA", 11, 11).build()).fault,
            TraceFault::channelLengthsDiffer);
  EXPECT_EQ(openBytes(AbifBuilder().last("DATA", 11).count("DATA", 11, 0).build()).fault,
            TraceFault::noAnalysedChannels);
}

TEST(TraceFault, AMissingFileIsNotFound) {
  const ScratchFolder folder;
  Quillet::TraceFile trace;

  EXPECT_FALSE(trace.open("missing.ab1"));

  EXPECT_EQ(trace.fault(), TraceFault::notFound);
  EXPECT_EQ(trace.status(), 1);
}

}  // namespace
