set(PELINOR_CLI_SOURCES
  cli/main.cpp
  cli/cli_util.cpp
  cli/registry_command.cpp
  cli/settings_command.cpp
  cli/queue_command.cpp
  cli/profile_command.cpp
)
