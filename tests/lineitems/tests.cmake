pelinor_add_tests(lineitems
  tests/lineitems/line_hdr_type_test.cpp
)
