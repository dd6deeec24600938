set(PELINOR_TEMPLATE_SOURCES
  template/extract_zone.cpp
  template/template.cpp
  template/template_reader.cpp
  template/template_writer.cpp
)
