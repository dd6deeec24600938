set(PELINOR_FORMAT_SOURCES
  format/amounts.cpp
  format/dates.cpp
  format/date_fast_path.cpp
  format/postcodes.cpp
  format/repair_trace.cpp
)
