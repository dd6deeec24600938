# pelinor_extract: from page images and PDFs to document data. Kept apart
# from the core library so that a client who only cleans values needs
# nothing beyond PCRE2.
set(PELINOR_EXTRACT_SOURCES
  extract/page_model.cpp
  extract/page_reader.cpp
  extract/page_extractor.cpp
  extract/line_item_extractor.cpp
  extract/batch_splitter.cpp
)

find_package(PkgConfig REQUIRED)
pkg_check_modules(TESSERACT REQUIRED IMPORTED_TARGET tesseract)
pkg_check_modules(LEPTONICA REQUIRED IMPORTED_TARGET lept)
pkg_check_modules(POPPLER_CPP REQUIRED IMPORTED_TARGET poppler-cpp)

add_library(pelinor_extract STATIC ${PELINOR_EXTRACT_SOURCES})
set_target_properties(pelinor_extract PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_include_directories(pelinor_extract PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
  PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(pelinor_extract PUBLIC pelinor
  PRIVATE PkgConfig::TESSERACT PkgConfig::LEPTONICA PkgConfig::POPPLER_CPP
          $<BUILD_INTERFACE:pelinor_warnings>)
target_compile_features(pelinor_extract PUBLIC cxx_std_20)
add_library(PelinorLib::extract ALIAS pelinor_extract)
set_target_properties(pelinor_extract PROPERTIES EXPORT_NAME extract)
