pelinor_add_tests(document)
