pelinor_add_tests(format
  tests/format/amounts_test.cpp
  tests/format/dates_test.cpp
  tests/format/date_fast_path_test.cpp
  tests/format/postcodes_test.cpp
  tests/format/repair_trace_test.cpp
)
