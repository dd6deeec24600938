pelinor_add_tests(profile)
