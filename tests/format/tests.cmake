pelinor_add_tests(format)
