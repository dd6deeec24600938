// Runs the built pelinor program for end-to-end tests of its verbs.

#ifndef PELINOR_TESTS_CLI_CLI_TEST_UTIL_H_
#define PELINOR_TESTS_CLI_CLI_TEST_UTIL_H_

#include <string>
#include <vector>

namespace pelinor::testing {

struct CommandResult {
  int status = -1;  // exit status of the program
  std::string out;  // everything written to standard output
  std::string err;  // everything written to standard error
};

// Runs pelinor with `args` (each passed as one argument, no shell) and
// the extra environment settings `env` ("NAME=value").
CommandResult RunPelinor(const std::vector<std::string>& args,
                         const std::vector<std::string>& env = {});

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_CLI_CLI_TEST_UTIL_H_
