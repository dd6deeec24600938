pelinor_add_tests(pattern_match
  tests/pattern/pattern_spec_test.cpp
  tests/pattern/char_mapper_test.cpp
  tests/pattern/pattern_match_test.cpp
  tests/pattern/evaluate_pattern_test.cpp
  tests/pattern/evaluate_fast_path_test.cpp
)
