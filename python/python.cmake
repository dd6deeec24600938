# The pelinor Python package: the extension pelinor._pelinor (pybind11)
# and the package files beside it, laid out under <build>/python so that
# PYTHONPATH=<build>/python imports it, installed into the interpreter's
# site-packages by `cmake --install`, and its pytest suite as a test.

# Prefer the system interpreter: the distribution's pybind11, pytest and
# their companions belong to it, whatever interpreter comes first on PATH.
if(NOT DEFINED Python3_EXECUTABLE AND EXISTS /usr/bin/python3)
  set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH
      "The Python interpreter the module is built for")
endif()
find_package(Python3 COMPONENTS Interpreter Development.Module)
if(Python3_FOUND)
  find_package(pybind11 CONFIG QUIET)
endif()
if(NOT Python3_FOUND OR NOT pybind11_FOUND)
  message(STATUS "pelinor Python module not built: needs Python 3 "
                 "development files and pybind11 (python3-dev, pybind11-dev)")
  return()
endif()

include(python/sources.cmake)
set(PELINOR_PYTHON_DIR ${PROJECT_BINARY_DIR}/python/pelinor)
pybind11_add_module(pelinor_python MODULE ${PELINOR_PYTHON_SOURCES})
set_target_properties(pelinor_python PROPERTIES OUTPUT_NAME _pelinor
  LIBRARY_OUTPUT_DIRECTORY ${PELINOR_PYTHON_DIR})
target_include_directories(pelinor_python PRIVATE ${PROJECT_SOURCE_DIR})
# The static library's objects are position-independent, so the module
# carries the library and needs nothing else installed.
target_link_libraries(pelinor_python PRIVATE pelinor pelinor_warnings)
foreach(f ${PELINOR_PYTHON_PACKAGE_FILES})
  get_filename_component(name ${f} NAME)
  configure_file(${f} ${PELINOR_PYTHON_DIR}/${name} COPYONLY)
endforeach()

# Where `cmake --install` puts the package, relative to the prefix: the
# interpreter's own site directory for that prefix, preferring one that
# is on its sys.path (Debian: /usr/local/lib/python3.X/dist-packages for
# /usr/local, /usr/lib/python3/dist-packages for /usr).
if(NOT DEFINED PELINOR_PYTHON_INSTALL_DIR)
  execute_process(
    COMMAND ${Python3_EXECUTABLE} -c [=[
import os, sys, sysconfig
prefix = os.path.normpath(sys.argv[1])
names = sysconfig.get_scheme_names()
paths = []
for scheme in ("deb_system", "posix_prefix", sysconfig.get_default_scheme()):
    if scheme in names:
        paths.append(sysconfig.get_path(
            "platlib", scheme, vars={"base": prefix, "platbase": prefix}))
paths.append(sysconfig.get_path("platlib"))
inside = [p for p in paths
          if os.path.normpath(p).startswith(prefix.rstrip("/") + "/")]
on_path = [p for p in inside if p in sys.path]
best = (on_path or inside or paths)[0]
print(os.path.relpath(best, prefix) if best in inside else best, end="")
]=] ${CMAKE_INSTALL_PREFIX}
    OUTPUT_VARIABLE PELINOR_PYTHON_SITE RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    set(PELINOR_PYTHON_SITE ${Python3_SITEARCH})
  endif()
  set(PELINOR_PYTHON_INSTALL_DIR ${PELINOR_PYTHON_SITE} CACHE PATH
      "Where the pelinor Python package is installed (relative: to the prefix)")
endif()
install(TARGETS pelinor_python
        LIBRARY DESTINATION ${PELINOR_PYTHON_INSTALL_DIR}/pelinor)
install(FILES ${PELINOR_PYTHON_PACKAGE_FILES}
        DESTINATION ${PELINOR_PYTHON_INSTALL_DIR}/pelinor)

if(PELINOR_BUILD_TESTS)
  add_test(NAME python
    COMMAND ${Python3_EXECUTABLE} -m pytest -q -p no:cacheprovider
            ${PROJECT_SOURCE_DIR}/python/tests)
  set_tests_properties(python PROPERTIES ENVIRONMENT
    "PYTHONPATH=${PROJECT_BINARY_DIR}/python;PYTHONDONTWRITEBYTECODE=1;PELINOR_SOURCE_DIR=${PROJECT_SOURCE_DIR}")
endif()
