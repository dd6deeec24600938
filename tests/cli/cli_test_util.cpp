#include "cli_test_util.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "test_util.h"

extern char** environ;

namespace pelinor::testing {

CommandResult RunPelinor(const std::vector<std::string>& args,
                         const std::vector<std::string>& env) {
  CommandResult result;
  TempDir dir;
  std::string out_path = dir.File("stdout");
  std::string err_path = dir.File("stderr");

  std::vector<std::string> argv_text{PELINOR_CLI_PATH};
  argv_text.insert(argv_text.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& a : argv_text) argv.push_back(a.data());
  argv.push_back(nullptr);

  // The child's environment: ours, with `env` settings replacing any of
  // the same name.
  std::vector<std::string> env_text;
  for (char** e = environ; *e != nullptr; ++e) {
    std::string entry = *e;
    std::string name = entry.substr(0, entry.find('='));
    bool replaced = false;
    for (const std::string& s : env) {
      if (s.substr(0, s.find('=')) == name) replaced = true;
    }
    if (!replaced) env_text.push_back(entry);
  }
  env_text.insert(env_text.end(), env.begin(), env.end());
  std::vector<char*> envp;
  for (std::string& e : env_text) envp.push_back(e.data());
  envp.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out_path.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, err_path.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t pid = 0;
  int rc = posix_spawn(&pid, PELINOR_CLI_PATH, &actions, nullptr, argv.data(),
                       envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) return result;
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
  }
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128;
  result.out = ReadFile(out_path);
  result.err = ReadFile(err_path);
  return result;
}

}  // namespace pelinor::testing
