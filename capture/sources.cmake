set(PELINOR_CAPTURE_SOURCES
  capture/capture_run.cpp
)
