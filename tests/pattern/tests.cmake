pelinor_add_tests(pattern)
