// The pelinor Python module: the library's classes under their own names.
// Reference: docs/python.md; type hints: python/pelinor/__init__.pyi.

#include "pelinor/version.h"
#include "python/binding_util.h"

PYBIND11_MODULE(_pelinor, m) {
  m.doc() =
      "PelinorLib from Python: the value formatter, the pattern engine, "
      "settings, registry, profiles, templates, documents, the queue and the "
      "capture run.\n\n"
      "Text is str (Windows-1252 underneath); a character with no "
      "Windows-1252 form raises UnicodeEncodeError. Failures the library "
      "reports with a message raise pelinor.Error carrying that message. "
      "Collections are sequences (len, iteration, 0-based [i]) and keep the "
      "library's one-based Item(i) and Item(key).";
  m.attr("__version__") = pelinor::kLibraryVersion;
  // Classes and signatures name the package, where users find them
  // (pelinor.cFormat), not this extension inside it.
  pybind11::object name = m.attr("__name__");
  m.attr("__name__") = "pelinor";
  pelinor::python::RegisterErrors(m);
  pelinor::python::BindSnapshot(m);  // before the routines that take one
  pelinor::python::BindValues(m);
  pelinor::python::BindFiles(m);
  pelinor::python::BindQueue(m);
  pelinor::python::BindCapture(m);
  m.attr("__name__") = name;
}
