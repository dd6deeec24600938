pelinor_add_tests(workflow
  tests/workflow/batch_fixture.cpp
  tests/workflow/line_item_extractor_test.cpp
  tests/workflow/batch_splitter_test.cpp
  tests/workflow/work_queue_test.cpp
)
if(TARGET workflow_tests)
  target_link_libraries(workflow_tests PRIVATE pelinor_workflow)
  if(TARGET pelinor_cli)
    target_compile_definitions(workflow_tests PRIVATE
      PELINOR_CLI_PATH="$<TARGET_FILE:pelinor_cli>")
    add_dependencies(workflow_tests pelinor_cli)
  endif()
endif()
if(TARGET workflow_tests)
  find_package(nlohmann_json REQUIRED)
  target_link_libraries(workflow_tests PRIVATE nlohmann_json::nlohmann_json)
endif()
