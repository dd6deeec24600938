pelinor_add_tests(extract
  tests/extract/page_model_test.cpp
  tests/extract/page_extractor_test.cpp
)
if(TARGET extract_tests)
  target_link_libraries(extract_tests PRIVATE pelinor_extract)
endif()
