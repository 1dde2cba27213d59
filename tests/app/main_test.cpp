#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "app/critical_error.h"
#include "app/parse_error.h"
#include "app/run.h"
#include "foundation/string.h"
#include "tests/support/captured_stderr.h"

// The entry point, with a run() of the test's own: its output and status for everything that a run
// can throw.

int quilletMain(int argc, char** argv);

namespace {

enum class Outcome { normal, number, parseError, exception, text, object };
Outcome outcome = Outcome::normal;

struct Report {
  int status = -1;
  std::string err;
};

Report mainWhenRunEndsIn(Outcome wanted) {
  outcome = wanted;
  char name[] = "quillet";
  char* argv[] = {name, nullptr};
  const CapturedStderr captured;
  const int status = quilletMain(1, argv);
  return {status, captured.text()};
}

}  // namespace

void Quillet::run(int, const char* const*) {
  switch (outcome) {
    case Outcome::normal:
      return;
    case Outcome::number:
      throw 1;
    case Outcome::parseError:
      throw Tessaly::ParseError("COMMAND LINE", 0, "invalid flag `-x'");
    case Outcome::exception:
      throw std::runtime_error("what it says");
    case Outcome::text:
      throw Tessaly::stringPositionError;
    case Outcome::object:
      throw std::string("anything");
  }
}

TEST(Main, ANormalRunIsStatus0WithoutAWord) {
  const Report report = mainWhenRunEndsIn(Outcome::normal);

  EXPECT_EQ(report.status, 0);
  EXPECT_EQ(report.err, "");
}

TEST(Main, AThrownNumberHasBeenReportedAlready) {
  const Report report = mainWhenRunEndsIn(Outcome::number);

  EXPECT_EQ(report.status, 1);
  EXPECT_EQ(report.err, "\n\nQUILLET is terminating.\n\n");
}

TEST(Main, AParseErrorIsAnErrorLine) {
  const Report report = mainWhenRunEndsIn(Outcome::parseError);

  EXPECT_EQ(report.status, 1);
  EXPECT_EQ(report.err,
            "ERROR: in COMMAND LINE: invalid flag `-x'\n\n\nQUILLET is terminating.\n\n");
}

TEST(Main, AnyStandardExceptionIsAnErrorLineWithItsText) {
  const Report report = mainWhenRunEndsIn(Outcome::exception);

  EXPECT_EQ(report.status, 1);
  EXPECT_EQ(report.err, "ERROR: what it says\n\n\nQUILLET is terminating.\n\n");
}

TEST(Main, AnythingElseIsUnexpected) {
  for (const Outcome thrown : {Outcome::text, Outcome::object}) {
    const Report report = mainWhenRunEndsIn(thrown);

    EXPECT_EQ(report.status, 1);
    EXPECT_EQ(report.err,
              "\n Unexpected exception thrown."
              "\n Please notify the Hallorand group, quillet@hallorand.example\n\n"
              "\n\nQUILLET is terminating.\n\n");
  }
}
