#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/project_folder.h"
#include "tests/support/trace_generator.h"

// One trace in two file formats gives the same results. Every test converts 240 traces of a seeded
// generator, in the same order in each format.

namespace {

constexpr std::uint32_t traceCount = 240;

TraceContents contentsOf(std::uint32_t seed, int highest) {
  const int kind = static_cast<int>(seed % 12);
  if (kind == 0) {  // long enough for the channel balance
    TraceContents trace = believableTrace(seed, 150 + static_cast<int>(seed % 50));
    for (std::vector<int>& channel : trace.channels) {
      for (int& sample : channel) sample = sample % (highest + 1);
    }
    return trace;
  }
  // Fewer than 41 bases, so that traces with an N pass the quality gate.
  return randomTrace(seed, 20 + static_cast<int>(seed * 7 % 400), static_cast<int>(1 + seed % 39),
                     highest);
}

struct Results {
  std::vector<std::string> phds;
  std::vector<std::string> polys;
};

using Form = std::function<std::string(const TraceContents&)>;

/// The results of one batch over all traces, written in the given format.
Results resultsOf(const Form& form, int highest = 65535, bool packed = false) {
  const ProjectFolder project;
  std::vector<std::string> names;
  for (std::uint32_t seed = 1; seed <= traceCount; ++seed) {
    const std::string name = "sample" + std::to_string(seed) + (packed ? ".gz" : "");
    const std::string file = form(contentsOf(seed, highest));
    packed ? project.addGzipped(name, file) : project.addTrace(name, file);
    names.push_back(name);
  }

  const ProgramResult run = project.runList(names);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "");

  Results results;
  for (std::uint32_t seed = 1; seed <= traceCount; ++seed) {
    const std::string sample = "sample" + std::to_string(seed);
    EXPECT_NE(project.poly(sample), "") << sample;
    results.phds.push_back(project.timelessPhd(sample));
    results.polys.push_back(project.poly(sample));
  }
  return results;
}

void expectSame(const Results& left, const Results& right) {
  ASSERT_EQ(left.phds.size(), traceCount);
  for (std::uint32_t i = 0; i < traceCount; ++i) {
    ASSERT_EQ(left.phds[i], right.phds[i]) << "seed " << i + 1;
    ASSERT_EQ(left.polys[i], right.polys[i]) << "seed " << i + 1;
  }
}

Form scf(const char* version, std::uint32_t sampleSize) {
  return [=](const TraceContents& contents) {
    return contents.scf().version(version).sampleSize(sampleSize).build();
  };
}

TEST(FormatsAgree, ScfVersions2And3Of16Bits) {
  expectSame(resultsOf(scf("2.00", 2)), resultsOf(scf("3.00", 2)));
}

TEST(FormatsAgree, ScfVersions2And3Of8Bits) {
  expectSame(resultsOf(scf("2.00", 1), 255), resultsOf(scf("3.00", 1), 255));
}

TEST(FormatsAgree, ScfOf8And16BitsWhereTheSamplesFit) {
  expectSame(resultsOf(scf("3.00", 1), 255), resultsOf(scf("3.00", 2), 255));
}

TEST(FormatsAgree, ScfVersions1And2) {
  expectSame(resultsOf(scf("1.00", 2)), resultsOf(scf("2.00", 2)));
}

TEST(FormatsAgree, GzippedAndPlainAbif) {
  const Form abif = [](const TraceContents& contents) { return contents.abif().build(); };

  expectSame(resultsOf(abif), resultsOf(abif, 65535, true));
}

TEST(FormatsAgree, GzippedAndPlainScf) {
  expectSame(resultsOf(scf("3.00", 2)), resultsOf(scf("3.00", 2), 65535, true));
}

TEST(FormatsAgree, AbifAndScfOf16Bits) {
  const Form abif = [](const TraceContents& contents) {
    return contents.abif().callerName("built.scf").build();
  };

  expectSame(resultsOf(abif), resultsOf(scf("3.00", 2)));
}

}  // namespace
