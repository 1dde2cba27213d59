#include "audit/expected_result.h"

#include <gtest/gtest.h>
#include <string>

#include "audit/redirected_writer.h"
#include "output/file_writer.h"
#include "output/phd_file.h"
#include "output/poly_file.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/trace_generator.h"
#include "trace/trace_file.h"

namespace {

using namespace std::string_literals;
using Quillet::ExpectedResult;
using Quillet::ResultFile;

/// A trace in memory and what it alone gives, with the sample name "clone".
struct Own {
  Own(const ScratchFolder& folder, const std::string& bytes)
      : content(read(folder, bytes)), expected(sample, content, peaks) {}

  static Quillet::TraceContent read(const ScratchFolder& folder, const std::string& bytes) {
    Tessaly::String path = folder.write("trace", bytes);
    Quillet::TraceFile trace;
    EXPECT_TRUE(trace.open(path));
    return trace.takeContent();
  }

  std::string phd() const {
    Quillet::KeptOutput output;
    expected.writePhd(output);
    return output.bytes();
  }
  std::string poly() const {
    Quillet::KeptOutput output;
    expected.writePoly(output);
    return output.bytes();
  }

  Tessaly::String sample = "clone";
  Quillet::TraceContent content;
  Quillet::PolyPeaks peaks;
  ExpectedResult expected;
};

bool equalsPhd(const ScratchFolder& folder, const Own& own, const std::string& text) {
  ResultFile file(folder.write("result", text).text());
  return own.expected.equalsPhd(file);
}

bool equalsPoly(const ScratchFolder& folder, const Own& own, const std::string& text) {
  ResultFile file(folder.write("result", text).text());
  return own.expected.equalsPoly(file);
}

/// The text with `replacement` instead of its first `part`.
std::string with(std::string text, const std::string& part, const std::string& replacement) {
  const std::size_t found = text.find(part);
  EXPECT_NE(found, std::string::npos) << part;
  return text.replace(found, part.size(), replacement);
}

// A new operation in the writers of results would lose its bytes here.
TEST(ExpectedResult, HoldsTheBytesThatTheWritersPutIntoRealFiles) {
  const ScratchFolder folder;
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    const Own own(folder, randomTrace(seed, 500, static_cast<int>(seed) * 7, 3000).abif().build());
    Quillet::TraceFile trace;
    Tessaly::String path = folder.at("trace");
    ASSERT_TRUE(trace.open(path));
    Tessaly::String bases;
    Tessaly::String qualities;
    Tessaly::Vector<std::int32_t> peaks;
    trace.getBaseCalls(bases, qualities, peaks);
    Quillet::TraceContent content = trace.takeContent();
    Tessaly::FileWriter files;
    Quillet::writePhdFile(files, folder.at("phd"),
                          {.sampleName = own.sample,
                           .callerName = content.callerName,
                           .timeText = "",
                           .pointCount = content.channels.pointCount(),
                           .bases = bases,
                           .qualities = qualities,
                           .peaks = peaks.data()});
    Quillet::PolyPeaks found;
    found.compute({content.channels, bases, peaks.data()});
    Quillet::writePolyFile(
        files, folder.at("poly"),
        {.sampleName = own.sample, .bases = bases, .peaks = peaks.data(), .found = found});

    EXPECT_EQ(own.phd(), folder.read("phd"));
    EXPECT_EQ(own.poly(), folder.read("poly"));
    EXPECT_GT(own.poly().size(), seed * 7 * 20);
  }
}

TEST(ExpectedResult, LeavesTheContentAsItIs) {
  const ScratchFolder folder;
  const TraceContents trace = believableTrace(3, 50);
  const Own own(folder, trace.abif().build());

  for (int channel = 0; channel < 4; ++channel) {
    const auto samples = own.content.channels[channel];
    EXPECT_TRUE(std::equal(samples.begin(), samples.end(),
                           trace.channels[static_cast<std::size_t>(channel)].begin()));
  }
}

TEST(ExpectedResult, SaysWhatTheTraceHoldsAndWhatTheGateRefuses) {
  const ScratchFolder folder;
  const std::string bases(70, 'A');
  const Own good(folder, AbifBuilder().bases(bases).build());
  EXPECT_TRUE(good.expected.holdsCalls());
  EXPECT_TRUE(good.expected.holdsQualities());
  EXPECT_FALSE(good.expected.unusable());

  const Own withoutCalls(folder, AbifBuilder().without("PBAS", 1).build());
  EXPECT_FALSE(withoutCalls.expected.holdsCalls());
  EXPECT_FALSE(withoutCalls.expected.holdsQualities());
  EXPECT_FALSE(withoutCalls.expected.unusable());

  const Own placeholders(folder, AbifBuilder().bases("ACGT").qualities({9, 0, 200, 128}).build());
  EXPECT_TRUE(placeholders.expected.holdsCalls());
  EXPECT_FALSE(placeholders.expected.holdsQualities());
  EXPECT_FALSE(placeholders.expected.unusable());
  EXPECT_NE(placeholders.phd().find("\nA 0 1\nC 0 4\nG 0 7\nT 0 10\nEND_DNA"), std::string::npos);

  std::vector<int> qualities(70, 30);
  qualities[4] = 0;
  const Own ended(folder, AbifBuilder().bases(bases).qualities(qualities).build());
  ASSERT_TRUE(ended.expected.unusable());
  EXPECT_EQ(ended.expected.unusable()->baseIndex, 40);
  EXPECT_EQ(ended.expected.qualities().length(), 4);
}

TEST(ExpectedResult, EqualsAPhdWhateverItsTime) {
  const ScratchFolder folder;
  const Own own(folder, believableTrace(5, 60).abif().build());
  const std::string text = own.phd();

  for (const char* time : {"", "Sat Nov 21 10:00:00 2026", "TIME: TRACE_ARRAY_MIN_INDEX: 0"}) {
    EXPECT_TRUE(equalsPhd(folder, own, with(text, "\nTIME: ", "\nTIME: "s + time)));
  }
  EXPECT_FALSE(equalsPhd(folder, own, with(text, "\nTIME: ", "\nTIME:")));
  EXPECT_FALSE(equalsPhd(folder, own, with(text, "\nTIME: \n", "\nTIME: x\ny\n")));
}

TEST(ExpectedResult, EqualsAPhdWithBlocksOfOtherToolsAfterEndDna) {
  const ScratchFolder folder;
  const Own own(folder, believableTrace(5, 60).abif().build());
  const std::string text = own.phd();
  const std::string block = "\nBEGIN_TAG\nx\nEND_TAG\n\nWR{\ny\n}\n";

  EXPECT_TRUE(equalsPhd(folder, own, text + block));
  EXPECT_TRUE(equalsPhd(folder, own, with(text, "END_DNA\n", "END_DNA\n" + block)));
  EXPECT_TRUE(equalsPhd(folder, own, with(text, "END_DNA\n", "END_DNA\n" + block) + block));
  EXPECT_FALSE(equalsPhd(folder, own, with(text, "END_DNA\n", block + "END_DNA\n")));
  EXPECT_FALSE(equalsPhd(folder, own, text + "x"));
  EXPECT_FALSE(equalsPhd(folder, own, text + text));
}

TEST(ExpectedResult, EveryCutAndEveryChangedByteIsADifference) {
  const ScratchFolder folder;
  const Own own(folder, believableTrace(5, 3).abif().build());
  const std::string phd = own.phd();
  const std::string poly = own.poly();
  ASSERT_TRUE(equalsPhd(folder, own, phd));
  ASSERT_TRUE(equalsPoly(folder, own, poly));
  const std::size_t time = phd.find("\nTIME: ") + 7;
  for (std::size_t i = 0; i < phd.size(); ++i) {
    std::string changed = phd;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_FALSE(equalsPhd(folder, own, phd.substr(0, i))) << i;
    EXPECT_EQ(equalsPhd(folder, own, changed), false) << i << " of " << time;
  }
  for (std::size_t i = 0; i < poly.size(); ++i) {
    std::string changed = poly;
    changed[i] = static_cast<char>(changed[i] ^ 1);
    EXPECT_FALSE(equalsPoly(folder, own, poly.substr(0, i))) << i;
    EXPECT_FALSE(equalsPoly(folder, own, changed)) << i;
  }
  EXPECT_FALSE(equalsPoly(folder, own, poly + "\n"));
}

// Longer than the piece of a result file that is in memory at a time.
TEST(ExpectedResult, LongResultsAreComparedToTheirEnd) {
  const ScratchFolder folder;
  const Own own(folder, randomTrace(9, 40'000, 30'000, 4000).abif().build());
  const std::string phd = own.phd();
  const std::string poly = own.poly();
  ASSERT_GT(phd.size(), std::size_t{270'000});

  EXPECT_TRUE(equalsPhd(folder, own, phd));
  EXPECT_TRUE(equalsPoly(folder, own, poly));
  for (const std::size_t at : {phd.size() - 30, phd.size() / 2, std::size_t{262'144}}) {
    std::string changed = phd;
    changed[at] = '#';
    EXPECT_FALSE(equalsPhd(folder, own, changed)) << at;
    changed = poly;
    changed[at] = '#';
    EXPECT_FALSE(equalsPoly(folder, own, changed)) << at;
  }
  EXPECT_TRUE(equalsPhd(folder, own, phd + "\nWR{\n" + std::string(400'000, 'x') + "\n}\n"));
}

TEST(ExpectedResult, LineFeedsInNamesAndBasesAreNoDifference) {
  const ScratchFolder folder;
  const Own own(folder, AbifBuilder()
                            .bases("A\n C")
                            .callerName("x\nTIME: y\nTRACE_ARRAY_MIN_INDEX: 0\nBEGIN_DNA\n")
                            .build());

  EXPECT_TRUE(equalsPhd(folder, own, own.phd()));
  EXPECT_TRUE(equalsPoly(folder, own, own.poly()));
}

TEST(ExpectedResult, NamesThePartsThatDiffer) {
  const ScratchFolder folder;
  const Own own(folder, AbifBuilder().bases("ACGT").qualities({30, 31, 200, 33}).build());
  const std::string text = own.phd();
  const struct {
    const char* what;
    std::string text;
    const char* parts;
  } cases[] = {
      {"nothing", text, ""},
      {"time", with(text, "TIME: ", "TIME: now"), ""},
      {"a base", with(text, "\nC 31 4\n", "\nN 31 4\n"), "b"},
      {"a quality", with(text, "\nC 31 4\n", "\nC 32 4\n"), "q"},
      {"a quality above 127", with(text, "\nG -56 7\n", "\nG 200 7\n"), "q"},
      {"a position", with(text, "\nC 31 4\n", "\nC 31 5\n"), "p"},
      {"a number that is spelled otherwise", with(text, "\nC 31 4\n", "\nC 031 4\n"), "q"},
      {"the sample", with(text, "FILE: clone", "FILE: other"), "h"},
      {"the length", with(text, "MAX_INDEX: 11", "MAX_INDEX: 12"), "h"},
      {"a line more in the header", with(text, "DYE: big\n", "DYE: big\n\n"), "h"},
      {"a base less", with(text, "\nC 31 4\n", "\n"), "bqp"},
      {"a base more", with(text, "END_DNA", "A 1 2\nEND_DNA"), "bqp"},
      {"two bases swapped", with(text, "A 30 1\nC 31 4\n", "C 31 4\nA 30 1\n"), "bqp"},
  };
  for (const auto& row : cases) {
    const auto parts = Quillet::splitPhd(row.text);
    ASSERT_TRUE(parts) << row.what;
    const auto found = own.expected.differencesIn(*parts);
    const std::string named = std::string(found.bases ? "b" : "") + (found.qualities ? "q" : "") +
                              (found.positions ? "p" : "") + (found.header ? "h" : "");
    EXPECT_EQ(named, row.parts) << row.what;
  }
}

}  // namespace
