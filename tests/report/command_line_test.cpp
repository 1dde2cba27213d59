#include "report/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "audit/companion_program.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string faultOf(const std::vector<std::string>& words) {
  try {
    Quillet::readCommandLine(words);
  } catch (const Quillet::UsageError& error) {
    return error.what();
  }
  return {};
}

std::vector<std::string> projectFlagsOf(const std::vector<std::string>& words) {
  return Quillet::readCommandLine(words).projectFlags;
}

}  // namespace

TEST(CommandLine, WithoutWordsAsksForTheSummaryOfTheWorkingDirectory) {
  const Quillet::CommandLine line = Quillet::readCommandLine({});

  EXPECT_FALSE(line.answer);
  EXPECT_THAT(line.projectFlags, IsEmpty());
  EXPECT_FALSE(line.tsv || line.json || line.fastq || line.fasta || line.html);
  EXPECT_TRUE(line.pictures);
  EXPECT_FALSE(line.trim);
  EXPECT_EQ(line.mixedRatio, 0.33);
}

TEST(CommandLine, NamesTheOutputs) {
  const Quillet::CommandLine line =
      Quillet::readCommandLine({"--tsv", "a.tsv", "--json=b.json", "--fastq", "-", "--fasta", "{}",
                                "--trim", "--mixed", "0.5"});

  EXPECT_EQ(line.tsv, "a.tsv");
  EXPECT_EQ(line.json, "b.json");
  EXPECT_EQ(line.fastq, "-");
  EXPECT_EQ(line.fasta, "{}");
  EXPECT_TRUE(line.trim);
  EXPECT_EQ(line.mixedRatio, 0.5);
}

TEST(CommandLine, NamesThePageByEitherFlag) {
  EXPECT_EQ(Quillet::readCommandLine({"-o", "page.html"}).html, "page.html");
  EXPECT_EQ(Quillet::readCommandLine({"--html", "page.html"}).html, "page.html");
  EXPECT_EQ(Quillet::readCommandLine({"--html=-"}).html, "-");
  EXPECT_EQ(Quillet::readCommandLine({"-o", "./-nostrip"}).html, "./-nostrip");
  EXPECT_TRUE(Quillet::readCommandLine({"-o", "page.html"}).pictures);
  EXPECT_FALSE(Quillet::readCommandLine({"--no-pictures", "-o", "page.html"}).pictures);
}

TEST(CommandLine, TakesTheConvertersFlagsInBothSpellings) {
  EXPECT_THAT(projectFlagsOf({"-d", "lab one"}), ElementsAre("-d", "lab one"));
  EXPECT_THAT(projectFlagsOf({"-dir", "lab one"}), ElementsAre("-d", "lab one"));
  EXPECT_THAT(projectFlagsOf({"-l", "names"}), ElementsAre("-l", "names"));
  EXPECT_THAT(projectFlagsOf({"-list", "-"}), ElementsAre("-l", "-"));
  EXPECT_THAT(projectFlagsOf({"-s"}), ElementsAre("-s"));
  EXPECT_THAT(projectFlagsOf({"-nostrip", "-nostrip"}), ElementsAre("-s"));
  EXPECT_THAT(projectFlagsOf({"-nostrip", "-list", "n", "-dir", "p"}),
              ElementsAre("-d", "p", "-l", "n", "-s"));
}

TEST(CommandLine, LetsTheLaterFolderAndListWin) {
  EXPECT_THAT(projectFlagsOf({"-d", "a", "-l", "x", "-dir", "b", "-list", "y"}),
              ElementsAre("-d", "b", "-l", "y"));
}

TEST(CommandLine, LeavesAWordThatIsAValueAsItIs) {
  EXPECT_THAT(projectFlagsOf({"-d", "-list"}), ElementsAre("-d", "-list"));
  EXPECT_THAT(projectFlagsOf({"-l", "-dir"}), ElementsAre("-l", "-dir"));
  EXPECT_THAT(projectFlagsOf({"-d", "-d", "-s"}), ElementsAre("-d", "-d", "-s"));
  EXPECT_EQ(Quillet::readCommandLine({"--tsv", "-nostrip"}).tsv, "-nostrip");
}

TEST(CommandLine, AnswersQuestionsWhateverElseItSays) {
  for (const char* word : {"-h", "--help", "-help"}) {
    EXPECT_THAT(Quillet::readCommandLine({"-d", "lab", word}).answer.value_or(""),
                HasSubstr("--fastq FILE"))
        << word;
  }
  for (const char* word : {"--version", "-version"}) {
    EXPECT_THAT(Quillet::readCommandLine({word}).answer.value_or(""),
                ::testing::MatchesRegex("quillet-report [0-9.]+\n"))
        << word;
  }
}

TEST(CommandLine, RefusesWhatItDoesNotKnow) {
  const std::vector<std::vector<std::string>> wrong{{"--nothing"},
                                                    {"-x"},
                                                    {"names.txt"},
                                                    {"-o"},
                                                    {"-o", "-s"},
                                                    {"--html", "-d", "project"},
                                                    {"-overwrite"},
                                                    {"-overwrite", "page.html"},
                                                    {"-o", "a", "--html", "b"},
                                                    {"--html"},
                                                    {"--no-pictures=1"},
                                                    {"-d"},
                                                    {"-list"},
                                                    {"--tsv"},
                                                    {"--mixed"},
                                                    {"--trim=4"},
                                                    {"--tsv", "a", "--tsv", "b"},
                                                    {"--mixed", "much"},
                                                    {"--mixed", "-1"},
                                                    {"--mixed", "nan"},
                                                    {"--mixed", "inf"},
                                                    {"--mixed", "0.3x"}};
  for (const std::vector<std::string>& words : wrong) {
    EXPECT_NE(faultOf(words), "") << ::testing::PrintToString(words);
  }
}

TEST(CommandLine, LetsOneOutputAtMostBeStandardOutput) {
  EXPECT_EQ(faultOf({"--tsv", "-", "--json", "b"}), "");
  EXPECT_EQ(faultOf({"--tsv", "-", "--fasta", "-"}), "only one output can be `-', standard output");
  EXPECT_EQ(faultOf({"-o", "-", "--fasta", "-"}), "only one output can be `-', standard output");
}
