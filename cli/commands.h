// The verb groups of the pelinor command-line program. Each adds its
// subcommands (with their options, help texts and callbacks) to `app`.

#ifndef PELINOR_CLI_COMMANDS_H_
#define PELINOR_CLI_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace pelinor::cli {

void AddRegistryCommand(CLI::App& app);
void AddSettingsCommand(CLI::App& app);
void AddQueueCommand(CLI::App& app);
void AddFormatCommands(CLI::App& app);
void AddPatternCommand(CLI::App& app);
void AddProfileCommands(CLI::App& app);
void AddTemplateCommands(CLI::App& app);
// Adds "capture" and the "document" group (show, upgrade).
void AddCaptureCommand(CLI::App& app);
// Adds "extract" and "process": from page files to a document tag file.
void AddExtractCommands(CLI::App& app);
// The work queue: "scan-in", "work capture" and "export".
void AddScanInCommand(CLI::App& app);
void AddWorkCommand(CLI::App& app);
void AddExportCommand(CLI::App& app);

}  // namespace pelinor::cli

#endif  // PELINOR_CLI_COMMANDS_H_
