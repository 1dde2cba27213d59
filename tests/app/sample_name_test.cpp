#include "app/sample_name.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/text_of.h"

namespace {

struct NameCase {
  std::string listed;
  std::string stripped;
  std::string unstripped;
};

void expectSampleNames(const std::vector<NameCase>& cases) {
  for (const NameCase& row : cases) {
    EXPECT_EQ(textOf(Quillet::sampleName(row.listed, true)), row.stripped) << row.listed;
    EXPECT_EQ(textOf(Quillet::sampleName(row.listed, false)), row.unstripped) << row.listed;
  }
}

TEST(SampleName, LosesAKnownExtensionOnce) {
  expectSampleNames({{"x.ab1", "x", "x.ab1"},
                     {"x.abi", "x", "x.abi"},
                     {"x.scf", "x", "x.scf"},
                     {"a.b.ab1", "a.b", "a.b.ab1"},
                     {"x.ab1.ab1", "x.ab1", "x.ab1.ab1"}});
}

TEST(SampleName, LosesAFinalGzFirstAndAlsoUnstripped) {
  expectSampleNames({{"x.ab1.gz", "x", "x.ab1"},
                     {"x.gz", "x", "x"},
                     {"x.ab1.gz.gz", "x.ab1.gz", "x.ab1.gz"},
                     {"x.gz.ab1", "x.gz", "x.gz.ab1"},
                     {"..gz", "", "."}});
}

TEST(SampleName, LosesAnyPartOfTheExtensionList) {
  expectSampleNames({{"x.ab", "x", "x.ab"},
                     {"x.a", "x", "x.a"},
                     {"x.sc", "x", "x.sc"},
                     {"x.s", "x", "x.s"},
                     {"x.", "x", "x."},
                     {"x..", "x.", "x.."}});
}

// The list has a blank after each extension.
TEST(SampleName, LosesAnExtensionWithAFinalBlank) {
  expectSampleNames({{"x.ab1 ", "x", "x.ab1 "},
                     {"x.abi ", "x", "x.abi "},
                     {"x.scf ", "x", "x.scf "},
                     {"x.ab1  ", "x.ab1  ", "x.ab1  "},
                     {"x.ab ", "x.ab ", "x.ab "},
                     {"x. ", "x. ", "x. "}});
}

TEST(SampleName, KeepsOtherExtensions) {
  expectSampleNames({{"x.AB1", "x.AB1", "x.AB1"},
                     {"x.scf2", "x.scf2", "x.scf2"},
                     {"x.b1", "x.b1", "x.b1"},
                     {"x.abi1", "x.abi1", "x.abi1"},
                     {"x.GZ", "x.GZ", "x.GZ"},
                     {"a.ab1.run", "a.ab1.run", "a.ab1.run"},
                     {"x", "x", "x"},
                     {"ab1", "ab1", "ab1"},
                     {"", "", ""}});
}

TEST(SampleName, IsEmptyForABareExtensionAndKeepsABareGz) {
  expectSampleNames(
      {{".ab1", "", ".ab1"}, {".", "", "."}, {".ab1.gz", "", ".ab1"}, {".gz", ".gz", ".gz"}});
}

TEST(SampleName, KeepsTheFoldersOfAListedPath) {
  expectSampleNames({{"run/x.ab1", "run/x", "run/x.ab1"},
                     {"run.1/x", "run.1/x", "run.1/x"},
                     {"run.ab1/x", "run.ab1/x", "run.ab1/x"}});
}

}  // namespace
