set(PELINOR_PYTHON_SOURCES
  python/binding_util.cpp
  python/bind_capture.cpp
  python/bind_files.cpp
  python/bind_queue.cpp
  python/bind_values.cpp
  python/module.cpp
)
# The pure-Python part of the package, copied beside the extension.
set(PELINOR_PYTHON_PACKAGE_FILES
  python/pelinor/__init__.py
  python/pelinor/__init__.pyi
  python/pelinor/py.typed
)
