// Bash completion for the pelinor program, generated from the same verb and
// option definitions as its --help, so the two never disagree.

#ifndef PELINOR_CLI_COMPLETION_H_
#define PELINOR_CLI_COMPLETION_H_

#include <CLI/CLI.hpp>
#include <string>

namespace pelinor::cli {

// BashCompletion()
//
// A bash script defining the completion of `app`: verbs (and the verbs of
// verb groups) where a verb is expected, the options of the verb typed so
// far after "-", files for arguments and for options that take a FILE or
// DIR, and nothing for other option values.
std::string BashCompletion(const CLI::App& app);

}  // namespace pelinor::cli

#endif  // PELINOR_CLI_COMPLETION_H_
