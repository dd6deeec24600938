set(PELINOR_DOCUMENT_SOURCES
  document/field_data.cpp
  document/document_data.cpp
)
