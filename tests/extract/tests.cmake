pelinor_add_tests(extract
  tests/extract/page_model_test.cpp
  tests/extract/page_extractor_test.cpp
  tests/extract/page_reader_test.cpp
)
if(TARGET extract_tests)
  # The reader tests make their pages with Leptonica and Poppler.
  target_link_libraries(extract_tests PRIVATE pelinor_extract
    PkgConfig::LEPTONICA PkgConfig::POPPLER_CPP)
  set_tests_properties(extract PROPERTIES ENVIRONMENT
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/extract/lsan.supp")
endif()
if(PELINOR_BUILD_CLI)
  pelinor_add_tests(extract_cli
    tests/extract/extract_cli_test.cpp
    tests/cli/cli_test_util.cpp
  )
  target_compile_definitions(extract_cli_tests PRIVATE
    PELINOR_CLI_PATH="$<TARGET_FILE:pelinor_cli>")
  target_link_libraries(extract_cli_tests PRIVATE nlohmann_json::nlohmann_json)
  add_dependencies(extract_cli_tests pelinor_cli)
endif()
