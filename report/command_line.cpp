#include "report/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <utility>

#include "app/version.h"
#include "audit/companion_program.h"

namespace Quillet {

namespace {

constexpr const char* description =
    "Compares every result of a Quillet project with what its own trace holds, and tells the\n"
    "state of each sample. Nothing is written into the project.";

constexpr const char* statusText =
    "Status: 0 all is converted, 1 no report, 2 results are missing, 3 results are not to be\n"
    "trusted.";

/// A ratio of two heights: 0 or more, and a number.
std::string ratioFault(const std::string& text) {
  double ratio = 0;
  if (CLI::detail::lexical_cast(text, ratio) && std::isfinite(ratio) && ratio >= 0) return {};
  return "RATIO is a number, 0 or more, not `" + text + "'";
}

/// With the converter -o is a flag without a value; here it would take the next flag for a file.
void refuseFlagAsPage(const CommandLine& line) {
  if (line.html && line.html->size() > 1 && line.html->starts_with('-')) {
    throw UsageError("-o takes a FILE, not `" + *line.html + "'; ./" + *line.html + " is one");
  }
}

void refuseTwoOnStandardOutput(const CommandLine& line) {
  const auto outputs = {&line.tsv, &line.json, &line.fastq, &line.fasta, &line.html};
  const auto count = std::count_if(outputs.begin(), outputs.end(),
                                   [](const auto* name) { return *name == std::string("-"); });
  if (count > 1) throw UsageError("only one output can be `-', standard output");
}

}  // namespace

CommandLine readCommandLine(const std::vector<std::string>& words) {
  CommandLine line;
  std::string dataDir;
  std::string listFile;
  bool keepExtensions = false;

  CLI::App app(description, "quillet-report");
  app.footer(statusText);
  app.set_help_flag("-h,--help", "print this help and stop");
  app.set_version_flag("--version", std::string("quillet-report ") + versionText,
                       "print the version and stop");
  const auto text = [&app](const std::string& name, std::string& value, const std::string& help) {
    return app.add_option(name, value, help)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  };
  const CLI::Option* dataDirOption =
      text("-d", dataDir, "the project; otherwise the working directory")->type_name("DIR");
  const CLI::Option* listFileOption =
      text("-l", listFile, "look at the names in the file; - is standard input")->type_name("LIST");
  app.add_flag("-s", keepExtensions, "extensions belong to the sample's name")
      ->disable_flag_override();
  const auto output = [&app](const std::string& name, std::optional<std::string>& file,
                             const std::string& help) {
    app.add_option_function<std::string>(
           name, [&file](const std::string& value) { file = value; }, help)
        ->type_name("FILE");
  };
  output("-o,--html", line.html, "write the report as one page, which shows the traces too");
  output("--tsv", line.tsv, "write the table; - is standard output");
  output("--json", line.json, "write the table as JSON");
  output("--fastq", line.fastq, "write the reads with their qualities");
  output("--fasta", line.fasta, "write the reads");
  app.add_flag_callback(
         "--no-pictures", [&line] { line.pictures = false; }, "leave the traces out of the page")
      ->disable_flag_override();
  app.add_flag("--trim", line.trim, "cut the reads of --fastq and --fasta to the trim range")
      ->disable_flag_override();
  app.add_option("--mixed", line.mixedRatio,
                 "count a base as mixed when its second peak is at least RATIO times the called "
                 "one;\n0.33 unless given")
      ->type_name("RATIO")
      ->check(ratioFault);

  std::vector<std::string> arguments = withUsualFlags(words, [&app](const std::string& word) {
    const CLI::Option* option = word.size() < 2 ? nullptr : app.get_option_no_throw(word);
    if (option == nullptr) return FlagKind::unknown;
    return option->get_items_expected_min() > 0 ? FlagKind::withValue : FlagKind::alone;
  });
  std::reverse(arguments.begin(), arguments.end());  // parse() takes the last word first
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    line.answer = app.help();
    return line;
  } catch (const CLI::CallForVersion& version) {
    line.answer = version.what() + std::string("\n");
    return line;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  refuseTwoOnStandardOutput(line);
  refuseFlagAsPage(line);

  std::vector<std::string>& flags = line.projectFlags;
  if (dataDirOption->count() > 0) {
    flags.insert(flags.end(), {"-d", dataDir});
  }
  if (listFileOption->count() > 0) {
    flags.insert(flags.end(), {"-l", listFile});
  }
  if (keepExtensions) {
    flags.emplace_back("-s");
  }
  return line;
}

}  // namespace Quillet
