pelinor_add_tests(pattern
  tests/pattern/month_coercion_test.cpp
)
include(tests/pattern/match_tests.cmake)
