pelinor_add_tests(queue)
