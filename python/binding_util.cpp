#include "python/binding_util.h"

#include <cstdint>
#include <vector>

#include "pelinor/text.h"

namespace pelinor::python {
namespace {

PyObject* g_error = nullptr;  // pelinor.Error, owned by the module

}  // namespace

std::string EncodeCp1252(py::handle src) {
  PyObject* s = src.ptr();
  if (PyUnicode_IS_ASCII(s)) {
    Py_ssize_t n = 0;
    const char* utf8 = PyUnicode_AsUTF8AndSize(s, &n);
    if (utf8 == nullptr) throw py::error_already_set();
    return std::string(utf8, static_cast<size_t>(n));
  }
  const int kind = PyUnicode_KIND(s);
  const void* data = PyUnicode_DATA(s);
  const Py_ssize_t n = PyUnicode_GET_LENGTH(s);
  std::string out;
  out.reserve(static_cast<size_t>(n));
  for (Py_ssize_t i = 0; i < n; ++i) {
    const int b = Windows1252Of(PyUnicode_READ(kind, data, i));
    if (b < 0) {
      PyObject* exc = PyObject_CallFunction(
          PyExc_UnicodeEncodeError, "sOnns", "windows-1252", s, i, i + 1,
          "the character has no Windows-1252 form");
      if (exc != nullptr) {
        PyErr_SetObject(PyExc_UnicodeEncodeError, exc);
        Py_DECREF(exc);
      }
      throw py::error_already_set();
    }
    out.push_back(static_cast<char>(b));
  }
  return out;
}

py::str DecodeCp1252(std::string_view bytes) {
  bool ascii = true;
  for (char c : bytes) {
    if (static_cast<unsigned char>(c) >= 0x80) {
      ascii = false;
      break;
    }
  }
  PyObject* s = nullptr;
  if (ascii) {
    s = PyUnicode_FromStringAndSize(bytes.data(),
                                    static_cast<Py_ssize_t>(bytes.size()));
  } else {
    std::vector<Py_UCS4> chars;
    chars.reserve(bytes.size());
    for (char c : bytes) {
      chars.push_back(CodePointOf(c));
    }
    s = PyUnicode_FromKindAndData(PyUnicode_4BYTE_KIND, chars.data(),
                                  static_cast<Py_ssize_t>(chars.size()));
  }
  if (s == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(s);
}

void RegisterErrors(py::module_& m) {
  g_error = PyErr_NewExceptionWithDoc(
      "pelinor.Error",
      "A failure the library reported; str(e) is the library's message.",
      PyExc_Exception, nullptr);
  if (g_error == nullptr) throw py::error_already_set();
  m.add_object("Error", py::handle(g_error));
  py::register_exception_translator([](std::exception_ptr p) {
    try {
      if (p) std::rethrow_exception(p);
    } catch (const LibraryError& e) {
      py::str message = DecodeCp1252(e.what());
      PyErr_SetObject(g_error, message.ptr());
    }
  });
}

}  // namespace pelinor::python
