pelinor_add_tests(capture
  tests/capture/capture_run_test.cpp
  tests/capture/settings_snapshot_test.cpp
)
