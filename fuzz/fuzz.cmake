# Fuzz targets, one program per reader family. With PELINOR_FUZZ (clang)
# they are libFuzzer fuzzers; otherwise each replays stored inputs through
# fuzz/corpus_main.cpp. Either way every target's seed corpus and past
# findings (fuzz/corpus/NAME, fuzz/regressions/NAME) run as a test.
set(PELINOR_FUZZ_TARGETS
  record
  settings
  registry
  profile
  detect_scan
  template
  document
  queue
  charmap
  pattern
  format
  page_model
  capture
)

add_library(pelinor_fuzz_util STATIC fuzz/fuzz_util.cpp)
target_link_libraries(pelinor_fuzz_util PUBLIC pelinor PRIVATE pelinor_warnings)

foreach(name ${PELINOR_FUZZ_TARGETS})
  add_executable(${name}_fuzz fuzz/${name}_fuzz.cpp)
  target_link_libraries(${name}_fuzz PRIVATE pelinor_fuzz_util
                        pelinor_warnings)
  set(inputs ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
  if(EXISTS ${PROJECT_SOURCE_DIR}/fuzz/regressions/${name})
    list(APPEND inputs ${PROJECT_SOURCE_DIR}/fuzz/regressions/${name})
  endif()
  if(PELINOR_FUZZ)
    target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    set(replay -runs=0)
  else()
    target_sources(${name}_fuzz PRIVATE fuzz/corpus_main.cpp)
    set(replay)
  endif()
  if(PELINOR_BUILD_TESTS)
    add_test(NAME fuzz_${name} COMMAND ${name}_fuzz ${replay} ${inputs})
  endif()
endforeach()
# Page files are read by the extraction library.
target_link_libraries(page_model_fuzz PRIVATE pelinor_extract)
