pelinor_add_tests(template)
