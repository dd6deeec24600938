pelinor_add_tests(template
  tests/template/extract_zone_test.cpp
  tests/template/template_test.cpp
)
