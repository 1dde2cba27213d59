#include "report/state_texts.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>

using Quillet::SampleState;

namespace {

std::string operations() {
  const std::ifstream file(QUILLET_SOURCE_DIR "/docs/operations.md");
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// The words of a text, without marks of Markdown and without links.
std::string plain(const std::string& markdown) {
  std::string text;
  for (std::size_t i = 0; i < markdown.size(); ++i) {
    if (markdown[i] == ']' && i + 1 < markdown.size() && markdown[i + 1] == '(') {
      i = markdown.find(')', i);
    } else if (markdown[i] != '`' && markdown[i] != '[') {
      text += markdown[i];
    }
  }
  return text;
}

/// What docs/operations.md says of a state: the two texts of its row.
std::string documentedText(SampleState state) {
  const std::string row = std::string("\n| `") + Quillet::textOf(state) + "` | ";
  const std::string text = operations();
  const std::size_t found = text.find(row);
  if (found == std::string::npos) return "";
  const std::size_t start = found + row.size();
  return plain(text.substr(start, text.find('\n', start) - start));
}

}  // namespace

TEST(StateTexts, TellHowBadAStateIs) {
  const struct {
    SampleState state;
    const char* severity;
  } cases[] = {{SampleState::differs, "untrusted"}, {SampleState::borrowed, "untrusted"},
               {SampleState::cut, "untrusted"},     {SampleState::orphan, "untrusted"},
               {SampleState::noPoly, "missing"},    {SampleState::invalid, "missing"},
               {SampleState::refused, "missing"},   {SampleState::hidden, "waiting"},
               {SampleState::waiting, "waiting"},   {SampleState::converted, "whole"}};
  static_assert(std::size(cases) == Quillet::sampleStates.size());
  for (const auto& row : cases) {
    EXPECT_STREQ(textOf(Quillet::severityOf(row.state)), row.severity) << textOf(row.state);
  }
}

TEST(StateTexts, SayOfEachStateSomethingElse) {
  std::set<std::string> texts;
  for (const SampleState state : Quillet::sampleStates) {
    const std::string text = Quillet::adviceOf(state);
    EXPECT_GT(text.size(), 50U) << text;
    EXPECT_NE(text.find(". "), std::string::npos) << text;  // what happened, what to do
    EXPECT_TRUE(text.ends_with('.') || text.ends_with('?')) << text;
    texts.insert(text);
  }
  EXPECT_EQ(texts.size(), Quillet::sampleStates.size());
}

// The first words that say what happened, and the words that say what to do.
TEST(StateTexts, SayWhatTheDocumentsSay) {
  const struct {
    SampleState state;
    const char* happened;
    const char* toDo;
  } cases[] = {
      {SampleState::differs, "The result is not what its own trace gives",
       "the trace has gone bad since: keep the results"},
      {SampleState::borrowed, "The trace holds no calls or no qualities, and",
       "Do not use the result"},
      {SampleState::cut,
       "file is not whole, or can not be read: the disk was full, or the run was stopped.",
       "Look at the file's rights"},
      {SampleState::noPoly, "The .phd.1 is right, and there is no .poly.",
       "Delete the .phd.1 and run"},
      {SampleState::orphan, "no trace of this sample.",
       "Bring the trace back, or delete the result. Many at once: was the project converted with "
       "-s, "
       "and is it checked without, or the other way round?"},
      {SampleState::invalid, "The trace can not be read; the detail says why.",
       "Copy it from the instrument again."},
      {SampleState::refused,
       "The trace holds no calls or no qualities, or a base from the 41st to the 60th fails the ",
       "Have the trace called again, or leave it out."},
      {SampleState::hidden, "Another trace has the same sample name",
       "Rename one. Or start over with -s: empty the results folders, run quillet -s, and give "
       "quillet-report the -s too."},
      {SampleState::waiting, "There is no result yet.",
       "Run quillet. If it stays, look at the disk and at the rights of the folders."},
      {SampleState::converted, "Both results are what the trace gives. That says nothing of ",
       "quality: "}};
  static_assert(std::size(cases) == Quillet::sampleStates.size());
  for (const auto& row : cases) {
    const std::string text = Quillet::adviceOf(row.state);
    const std::string documented = documentedText(row.state);
    for (const char* words : {row.happened, row.toDo}) {
      EXPECT_NE(text.find(words), std::string::npos) << text << '\n' << words;
      EXPECT_NE(documented.find(words), std::string::npos) << documented << '\n' << words;
    }
  }
}
