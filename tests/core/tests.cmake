pelinor_add_tests(core
  tests/core/text_test.cpp
  tests/core/numeric_test.cpp
  tests/core/text_file_test.cpp
  tests/core/collection_test.cpp
  tests/core/log_test.cpp
  tests/core/date_text_test.cpp
  tests/core/data_parser_test.cpp
  tests/core/file_system_test.cpp
  tests/core/block_arena_test.cpp
)
pelinor_add_tests(ini_file tests/core/ini_file_test.cpp)
pelinor_add_tests(registry tests/core/registry_test.cpp)
pelinor_add_tests(reg_exp tests/core/reg_exp_test.cpp)
