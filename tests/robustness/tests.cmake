pelinor_add_tests(limits tests/robustness/limits_test.cpp)
