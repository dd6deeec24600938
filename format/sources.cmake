set(PELINOR_FORMAT_SOURCES
  format/amounts.cpp
  format/dates.cpp
  format/postcodes.cpp
  format/repair_trace.cpp
)
