# pelinor_workflow: the work queue driving documents from scanned batches
# through capture to export. It builds on extraction (pages, OCR) and the
# capture run, so it is a library of its own beside pelinor_extract.
set(PELINOR_WORKFLOW_SOURCES
  workflow/work_queue.cpp
)

add_library(pelinor_workflow STATIC ${PELINOR_WORKFLOW_SOURCES})
set_target_properties(pelinor_workflow PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_include_directories(pelinor_workflow PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
  PRIVATE ${PROJECT_SOURCE_DIR})
find_package(Threads REQUIRED)
target_link_libraries(pelinor_workflow PUBLIC pelinor_extract pelinor
  Threads::Threads PRIVATE $<BUILD_INTERFACE:pelinor_warnings>)
target_compile_features(pelinor_workflow PUBLIC cxx_std_20)
add_library(PelinorLib::workflow ALIAS pelinor_workflow)
set_target_properties(pelinor_workflow PROPERTIES EXPORT_NAME workflow)
