set(PELINOR_LINEITEMS_SOURCES
  lineitems/line_hdr_type.cpp
  lineitems/table_extract.cpp
  lineitems/line_data_rules.cpp
  lineitems/line_data.cpp
)
