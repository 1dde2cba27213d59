#include "shards/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <thread>
#include <utility>

#include "app/version.h"
#include "audit/companion_program.h"

namespace Quillet {

namespace {

constexpr const char* description =
    "Cuts a Quillet project into shards that can be converted anywhere, in any order, and joins\n"
    "their results, which are those of one plain run.";

constexpr const char* statusText =
    "Status: 0 done or nothing to do, 1 failed or refused, 2 shards are not finished.";
constexpr const char* moreText = "`quillet-shards COMMAND --help' tells more.";

/// A whole number of 1 or more.
bool readNumber(const std::string& text, std::size_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

/// The commands with their flags, as the parser fills them in.
class ShardsApp {
 public:
  ShardsApp() : app_(description, "quillet-shards") {
    app_.footer(statusText + std::string("\n") + moreText);
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.get_formatter()->label("Subcommands", "Commands");
    app_.get_formatter()->label("REQUIRED", "");
    app_.require_subcommand(1);
    addAnswers(app_);
    addPlan();
    addRun();
    addJoin();
    addAll();
  }

  ShardsCommand parse(std::vector<std::string> words) {
    words =
        withUsualFlags(std::move(words), [this](const std::string& word) { return kindOf(word); });
    std::reverse(words.begin(), words.end());  // parse() takes the last word first
    try {
      app_.parse(std::move(words));
    } catch (const CLI::CallForHelp&) {
      return answer(app_.help());
    } catch (const CLI::CallForVersion&) {
      return answer(std::string("quillet-shards ") + versionText + '\n');
    } catch (const CLI::ParseError& error) {
      throw UsageError(error.what());
    }
    for (const auto& [command, task] : tasks_) {
      if (command->parsed()) command_.task = task;
    }
    command_.plan.projectFlags = projectFlags();
    checkSizes();
    return std::move(command_);
  }

 private:
  static ShardsCommand answer(const std::string& text) {
    ShardsCommand command;
    command.answer = text;
    return command;
  }

  CLI::App& addCommand(const char* name, ShardsTask task, const char* help) {
    CLI::App& command = *app_.add_subcommand(name, help);
    command.footer(statusText);
    addAnswers(command);
    tasks_.emplace_back(&command, task);
    return command;
  }

  static void addAnswers(CLI::App& app) {
    app.set_help_flag("-h,--help", "print this help and stop");
    app.set_version_flag("--version", std::string(), "print the version and stop");
  }

  static void addText(CLI::App& command, const char* flag, std::string& value, const char* type,
                      const char* help) {
    command.add_option(flag, value, help)
        ->type_name(type)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  }

  static void addFlag(CLI::App& command, const char* flag, bool& value, const char* help) {
    command.add_flag(flag, value, help)->disable_flag_override();
  }

  template <typename Number>
  static void addNumber(CLI::App& command, const char* flag, Number& value, const char* type,
                        const char* help) {
    const auto take = [&value, type = std::string(type)](const std::string& text) {
      std::size_t number = 0;
      if (!readNumber(text, number)) {
        throw CLI::ValidationError(type + " is a number, 1 or more, not `" + text + "'");
      }
      value = number;
    };
    command.add_option_function<std::string>(flag, take, help)
        ->type_name(type)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  }

  void addProject(CLI::App& command) {
    addText(command, "-d", dataDir_, "DIR", "the project; otherwise the working directory");
  }

  void addPlanFlags(CLI::App& command) {
    addProject(command);
    addNumber(command, "-n", command_.plan.count, "COUNT", "lay COUNT shards at most");
    addNumber(command, "--size", command_.plan.size, "TRACES",
              "lay shards of TRACES names at most, as far as cuts allow");
    addText(command, "-l", listFile_, "LIST", "take the names in the file; - is standard input");
    addFlag(command, "-s", keepExtensions_, "extensions belong to the sample's name");
    addFlag(command, "-o,--overwrite", overwrite_, "convert again what has been converted");
    addFlag(command, "-f", command_.plan.force, "remove the shards that are there");
  }

  void addPlan() {
    addPlanFlags(addCommand("plan", ShardsTask::plan, "lay the shards of what is to be converted"));
  }

  void addRun() {
    CLI::App& command = addCommand("run", ShardsTask::run, "convert one shard");
    command.add_option("SHARD", command_.shard, "its folder")->required()->type_name("");
    command
        .add_option_function<std::string>(
            "--scratch", [this](const std::string& text) { command_.scratch = text; },
            "work in a folder of this one, such as a local disk")
        ->type_name("DIR")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    addFlag(command, "--keep-gzip", command_.keepGzip,
            "leave the unpacking of gzipped traces to quillet");
  }

  void addJoin() {
    addProject(addCommand("join", ShardsTask::join, "move the results into the project"));
  }

  void addAll() {
    CLI::App& command =
        addCommand("all", ShardsTask::all, "plan, run all shards on this machine, and join");
    addPlanFlags(command);
    command_.processCount = std::max(1U, std::thread::hardware_concurrency());
    addNumber(command, "-j", command_.processCount, "N",
              "use N processes; otherwise one for each processor");
  }

  void checkSizes() const {
    const PlanOptions& plan = command_.plan;
    if (plan.count && plan.size) throw UsageError("-n and --size exclude each other");
    if (command_.task == ShardsTask::plan && !plan.count && !plan.size) {
      throw UsageError("plan needs -n or --size");
    }
  }

  /// Flags are looked up in the command that is named first.
  FlagKind kindOf(const std::string& word) {
    for (const auto& [command, task] : tasks_) {
      if (named_ == nullptr && command->get_name() == word) named_ = command;
    }
    const CLI::App& app = named_ != nullptr ? *named_ : app_;
    const CLI::Option* option = word.size() < 2 ? nullptr : app.get_option_no_throw(word);
    if (option == nullptr) return FlagKind::unknown;
    return option->get_items_expected_min() > 0 ? FlagKind::withValue : FlagKind::alone;
  }

  std::vector<std::string> projectFlags() const {
    std::vector<std::string> flags;
    if (wasGiven("-d")) flags.insert(flags.end(), {"-d", dataDir_});
    if (wasGiven("-l")) flags.insert(flags.end(), {"-l", listFile_});
    if (keepExtensions_) flags.emplace_back("-s");
    if (overwrite_) flags.emplace_back("-o");
    return flags;
  }

  bool wasGiven(const char* flag) const {
    return std::any_of(tasks_.begin(), tasks_.end(), [flag](const auto& entry) {
      const CLI::Option* option = entry.first->get_option_no_throw(flag);
      return option != nullptr && option->count() > 0;
    });
  }

  CLI::App app_;
  std::vector<std::pair<CLI::App*, ShardsTask>> tasks_;
  const CLI::App* named_ = nullptr;
  ShardsCommand command_;
  std::string dataDir_;
  std::string listFile_;
  bool keepExtensions_ = false;
  bool overwrite_ = false;
};

}  // namespace

ShardsCommand readShardsCommand(const std::vector<std::string>& words) {
  return ShardsApp().parse(words);
}

}  // namespace Quillet
