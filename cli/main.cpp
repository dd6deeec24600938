// pelinor: the command-line face of the library.
//
// Exit status: 0 success; 1 when a file cannot be read or written or a
// value is invalid; 2 for a usage error (unknown verb or option, missing
// argument, a text argument Windows-1252 cannot hold).

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "cli/completion.h"
#include "pelinor/text_file.h"
#include "pelinor/version.h"

namespace {

std::string VersionText() {
  char pcre2[64] = "";
  pcre2_config(PCRE2_CONFIG_VERSION, pcre2);
  return std::string("pelinor ") + pelinor::kLibraryVersion + "\nPCRE2 " +
         pcre2;
}

// Wraps all help text to the terminal's width.
class WrappingFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override {
    return pelinor::cli::WrapText(CLI::Formatter::make_help(app, name, mode),
                                  pelinor::cli::HelpWidth());
  }
};

std::vector<std::string> VerbNames(CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* sub : app.get_subcommands({})) {
    names.push_back(sub->get_name());
  }
  return names;
}

// Finds the first word where a verb is expected but none of that name
// exists, and reports it with the nearest verb. False when there is none
// (CLI11 then reports anything else that is wrong).
bool ReportUnknownVerb(CLI::App& app, int argc, char** argv) {
  CLI::App* current = &app;
  std::string path = "pelinor";
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--") return false;
    if (word.size() > 1 && word[0] == '-') {
      // Skip the value of an option that takes one.
      const size_t eq = word.find('=');
      const CLI::Option* opt = current->get_option_no_throw(word.substr(0, eq));
      if (opt != nullptr && eq == std::string::npos &&
          opt->get_type_size_max() > 0 && opt->get_expected_min() > 0) {
        ++i;
      }
      continue;
    }
    const std::vector<std::string> verbs = VerbNames(*current);
    if (verbs.empty()) return false;
    CLI::App* sub = nullptr;
    for (CLI::App* s : current->get_subcommands({})) {
      if (s->get_name() == word) sub = s;
    }
    if (sub == nullptr) {
      if (!current
               ->get_options(
                   [](const CLI::Option* o) { return o->get_positional(); })
               .empty()) {
        return false;  // a verb group that also takes arguments
      }
      std::string message =
          "unknown verb '" + pelinor::cli::PathText(word) + "' for " + path;
      const std::string near = pelinor::cli::NearestName(word, verbs);
      if (!near.empty()) message += "; did you mean '" + near + "'?";
      message += "\nRun '" + path + " --help' for the verbs.";
      pelinor::cli::Fail(message, 2);
      return true;
    }
    current = sub;
    path += " " + word;
  }
  return false;
}

// Flushes standard output and gives the exit status: a failed write of the
// output is an error of its own (status 1), except a closed pipe, which ends
// the program quietly.
int Finish(int status) {
  const int error = pelinor::cli::FlushStdout();
  if (error == 0 || error == EPIPE) return status;
  pelinor::cli::Fail(std::string("standard output: cannot write: ") +
                     std::strerror(error));
  return status == 0 ? 1 : status;
}

}  // namespace

int main(int argc, char** argv) {
  pelinor::cli::InstallSignalHandlers();
  CLI::App app{
      "pelinor: capture profiles, templates, document data, the work queue "
      "and OCR value checks"};
  app.name("pelinor");
  app.formatter(std::make_shared<WrappingFormatter>());
  app.set_version_flag("--version", VersionText(),
                       "Print the program's version and PCRE2's, and exit");
  app.set_help_all_flag("--help-all", "Print the help of every verb and exit");
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 success; 1 when a file cannot be read or written, or a "
      "value is invalid (validate, format, pattern); 2 for a usage error "
      "(unknown verb or option, missing argument).");
  pelinor::cli::AddRegistryCommand(app);
  pelinor::cli::AddSettingsCommand(app);
  pelinor::cli::AddQueueCommand(app);
  pelinor::cli::AddFormatCommands(app);
  pelinor::cli::AddPatternCommand(app);
  pelinor::cli::AddProfileCommands(app);
  pelinor::cli::AddTemplateCommands(app);
  pelinor::cli::AddCaptureCommand(app);

  if (argc == 1) {
    pelinor::cli::WriteStdout(app.help());
    return Finish(0);
  }
  if (argc == 2 && std::strcmp(argv[1], "--bash-completion") == 0) {
    pelinor::cli::WriteStdout(pelinor::cli::BashCompletion(app));
    return Finish(0);
  }
  if (ReportUnknownVerb(app, argc, argv)) return Finish(2);
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    app.exit(e);
    return Finish(0);
  } catch (const CLI::CallForAllHelp& e) {
    app.exit(e);
    return Finish(0);
  } catch (const CLI::CallForVersion& e) {
    app.exit(e);
    return Finish(0);
  } catch (const CLI::ParseError& e) {
    pelinor::cli::Fail(
        std::string(e.what()) + "\nRun 'pelinor --help' for usage.", 2);
    return Finish(2);
  } catch (const pelinor::cli::EncodingError& e) {
    // The message names the character in UTF-8 already.
    std::fprintf(stderr, "pelinor: %s\n", e.what());
    return Finish(2);
  } catch (const std::exception& e) {
    pelinor::cli::Fail(pelinor::cli::PathText(e.what()));
    return Finish(1);
  }
  return Finish(pelinor::cli::ExitStatus());
}
