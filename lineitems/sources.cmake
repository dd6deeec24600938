set(PELINOR_LINEITEMS_SOURCES
  lineitems/line_hdr_type.cpp
)
