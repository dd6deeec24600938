pelinor_add_tests(lineitems
  tests/lineitems/line_hdr_type_test.cpp
)
pelinor_add_tests(lineitems_tables tests/lineitems/table_extract_test.cpp tests/lineitems/line_data_rules_test.cpp)
pelinor_add_tests(line_data tests/lineitems/line_data_test.cpp)
