pelinor_add_tests(document tests/document/field_data_test.cpp tests/document/document_data_test.cpp)
