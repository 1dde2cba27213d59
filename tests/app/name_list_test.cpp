#include "app/name_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/captured_stderr.h"
#include "tests/support/scratch_folder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

namespace {

using namespace std::string_view_literals;
using Names = std::vector<std::string>;

Names namesIn(std::string_view text) {
  std::istringstream stream{std::string(text)};
  return Quillet::namesInStream(stream);
}

/// Lets standard input be `text` until the object goes.
class StandardInput {
 public:
  explicit StandardInput(const std::string& text)
      : buffer_(text), former_(std::cin.rdbuf(&buffer_)) {}
  ~StandardInput() {
    std::cin.rdbuf(former_);
    std::cin.clear();
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  std::stringbuf buffer_;
  std::streambuf* former_;
};

// The lines of a list.

TEST(NameList, TakesTheFirstWordOfEveryLineThatHasOne) {
  const struct {
    std::string_view text;
    Names names;
  } cases[] = {
      {"", {}},
      {"\n\n \t\n", {}},
      {"a", {"a"}},
      {"a.ab1 extra\n\nb.scf\n", {"a.ab1", "b.scf"}},
      {"  a\n\tb c d\n", {"a", "b"}},
      {"b\na\nb\n", {"b", "a", "b"}},
      {"run/x.ab1\n../y\n", {"run/x.ab1", "../y"}},
      {"\xe9\xff\n", {"\xe9\xff"}},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(namesIn(row.text), row.names) << row.text;
  }
}

TEST(NameList, AnyWhiteSpaceSurroundsAName) {
  EXPECT_EQ(namesIn("a\r\nb\vx\nc\fx\nd\tx\n\r\n \v\f\te"), (Names{"a", "b", "c", "d", "e"}));
}

TEST(NameList, AWordThatBeginsWithANumberSignIsAName) {
  EXPECT_EQ(namesIn("#a.ab1\n# b.ab1\n  #\n"), (Names{"#a.ab1", "#", "#"}));
}

TEST(NameList, AWordEndsAtItsFirstZeroByte) {
  const struct {
    std::string_view text;
    Names names;
  } cases[] = {
      {"a.ab1\0\n"sv, {"a.ab1"}},
      {"a.ab1\0z\0z extra\nb\n"sv, {"a.ab1", "b"}},
      {"a\0"sv, {"a"}},
      {" a \0b\n"sv, {"a"}},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(namesIn(row.text), row.names) << ::testing::PrintToString(row.text);
  }
}

TEST(NameList, AWordThatBeginsWithAZeroByteIsAnEmptyName) {
  EXPECT_EQ(namesIn("\0a\nb\n \0\n"sv), (Names{"", "b", ""}));
}

// Where the list is.

TEST(NameList, AListFileIsReadWhole) {
  const ScratchFolder folder;
  const Tessaly::String file = folder.write("names", "b.ab1\na.ab1");

  EXPECT_THAT(Quillet::namesInFile(file), Optional(ElementsAre("b.ab1", "a.ab1")));
}

TEST(NameList, AListFileThatCanNotBeOpenedIsNoList) {
  const ScratchFolder folder;

  EXPECT_EQ(Quillet::namesInFile(folder.at("names")), std::nullopt);
}

TEST(NameList, AListFileThatIsADirectoryHoldsNoNames) {
  const ScratchFolder folder;
  folder.write("names/a.ab1", "");

  EXPECT_THAT(Quillet::namesInFile(folder.at("names")), Optional(IsEmpty()));
}

TEST(NameList, AHyphenIsStandardInputEvenWhereAFileHasThatName) {
  const ScratchFolder folder;
  folder.write("-", "file");
  const StandardInput input("b.ab1 extra\n\na.ab1");

  EXPECT_THAT(Quillet::namesInFile("./-"), Optional(ElementsAre("file")));
  EXPECT_THAT(Quillet::namesInFile("-"), Optional(ElementsAre("b.ab1", "a.ab1")));
}

TEST(NameList, ADirectorysFilesComeInAscendingByteOrderWithoutHiddenOnes) {
  const ScratchFolder folder;
  for (const char* name :
       {"b", "a.1", "a", "B", "9", "10", "\xe9", ".ab1", "x.ab1/y", "~", "a-1"}) {
    folder.write(name, "");
  }

  EXPECT_THAT(Quillet::namesInDirectory(folder.at("")),
              ElementsAre("10", "9", "B", "a", "a-1", "a.1", "b", "~", "\xe9"));
}

TEST(NameList, ADirectoryThatCanNotBeOpenedHoldsNoFiles) {
  const ScratchFolder folder;

  EXPECT_THAT(Quillet::namesInDirectory(folder.at("nowhere")), IsEmpty());
}

// The names of a run.

TEST(NameList, ARunHasTheNamesOfItsListFileOrElseOfItsDirectory) {
  const ScratchFolder folder;
  folder.write("chromat/b.ab1", "");
  folder.write("chromat/a.ab1", "");
  folder.write("names", "z\nz\n");
  Quillet::Settings settings;
  const Tessaly::String chromatPath = folder.at("chromat/");

  EXPECT_THAT(Quillet::namesOfRun(settings, chromatPath), ElementsAre("a.ab1", "b.ab1"));
  settings.listFile_ = "names";
  EXPECT_THAT(Quillet::namesOfRun(settings, chromatPath), ElementsAre("z", "z"));
}

TEST(NameList, ARunWithoutItsListFileEndsWithAMessage) {
  const ScratchFolder folder;
  Quillet::Settings settings;
  settings.listFile_ = "nowhere";

  const CapturedStderr captured;
  EXPECT_THROW(Quillet::namesOfRun(settings, folder.at("chromat/")), int);
  EXPECT_EQ(captured.text(), "ERROR: can not open the file nowhere");
}

}  // namespace
