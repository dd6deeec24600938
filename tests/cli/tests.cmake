pelinor_add_tests(cli
  tests/cli/cli_test_util.cpp
  tests/cli/cli_util_test.cpp
  tests/cli/queue_cli_test.cpp
  tests/cli/registry_cli_test.cpp
  tests/cli/settings_cli_test.cpp
  tests/cli/profile_cli_test.cpp
  tests/cli/format_cli_test.cpp
  tests/cli/pattern_cli_test.cpp
  tests/cli/template_cli_test.cpp
  tests/cli/capture_cli_test.cpp
)
if(TARGET cli_tests)
  target_include_directories(cli_tests PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(cli_tests PRIVATE
    PELINOR_CLI_PATH="$<TARGET_FILE:pelinor_cli>")
  target_sources(cli_tests PRIVATE cli/cli_util.cpp)
  target_link_libraries(cli_tests PRIVATE nlohmann_json::nlohmann_json)
  add_dependencies(cli_tests pelinor_cli)
endif()
# The program as people and scripts run it: exit statuses, messages, files
# left alone, output, encoding, the man page and the completion.
if(TARGET pelinor_cli)
  add_test(NAME program
    COMMAND bash ${PROJECT_SOURCE_DIR}/tests/cli/program_test.sh
            $<TARGET_FILE:pelinor_cli> ${PROJECT_SOURCE_DIR}
            ${PROJECT_BINARY_DIR})
endif()
# What a consumer of the installed package gets.
if(TARGET pelinor_cli)
  add_test(NAME package
    COMMAND bash ${PROJECT_SOURCE_DIR}/tests/cli/package_test.sh
            ${PROJECT_BINARY_DIR})
endif()
