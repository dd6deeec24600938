// pelinor: the command-line face of the library.

#include <CLI/CLI.hpp>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/version.h"

int main(int argc, char** argv) {
  CLI::App app{
      "pelinor: capture profiles, templates, document data, the work queue "
      "and OCR value checks"};
  app.set_version_flag("--version", pelinor::kLibraryVersion);
  app.require_subcommand(1);
  pelinor::cli::AddRegistryCommand(app);
  pelinor::cli::AddSettingsCommand(app);
  pelinor::cli::AddQueueCommand(app);
  pelinor::cli::AddFormatCommands(app);
  pelinor::cli::AddPatternCommand(app);
  pelinor::cli::AddProfileCommands(app);
  pelinor::cli::AddTemplateCommands(app);
  pelinor::cli::AddCaptureCommand(app);
  pelinor::cli::AddExtractCommands(app);
  pelinor::cli::AddScanInCommand(app);
  pelinor::cli::AddWorkCommand(app);
  pelinor::cli::AddExportCommand(app);
  CLI11_PARSE(app, argc, argv);
  return pelinor::cli::ExitStatus();
}
