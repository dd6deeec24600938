set(PELINOR_BENCH_SOURCES
  bench/text_file_bench.cpp
  bench/ini_file_bench.cpp
  bench/profile_bench.cpp
  bench/queue_bench.cpp
  bench/pattern_bench.cpp
  bench/format_bench.cpp
)
