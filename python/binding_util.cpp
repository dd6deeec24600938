#include "python/binding_util.h"

#include <cstdint>
#include <vector>

namespace pelinor::python {
namespace {

// The characters of bytes 0x80 to 0x9F; the five undefined bytes map to
// the control characters of the same code.
constexpr char32_t kHighTable[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The byte of character `c`, or -1 when Windows-1252 has none.
int ByteOf(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
  for (int i = 0; i < 32; ++i) {
    if (kHighTable[i] == c) return 0x80 + i;
  }
  return -1;
}

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
    const int b = ByteOf(PyUnicode_READ(kind, data, i));
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
      const unsigned char b = static_cast<unsigned char>(c);
      chars.push_back(b >= 0x80 && b < 0xA0 ? kHighTable[b - 0x80] : b);
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
