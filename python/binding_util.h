// Plumbing shared by the Python bindings: text and path conversion at the
// boundary, the library's failures as Python exceptions, and collections
// as Python sequences.
//
// Text: the library works in Windows-1252 bytes; Python sees `str`. A str
// argument is converted character by character and a character without a
// Windows-1252 form raises UnicodeEncodeError (nothing is replaced
// silently). A bytes argument is taken as Windows-1252 already. Results
// are decoded with the full table; the five bytes Windows-1252 leaves
// undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the control characters
// of the same code, so every byte survives a round trip.
//
// Paths: file names are the file system's bytes (os.fsencode()), not
// Windows-1252, so any existing file can be named.
//
// Thread safety: every function here is called with the GIL held.

#ifndef PELINOR_PYTHON_BINDING_UTIL_H_
#define PELINOR_PYTHON_BINDING_UTIL_H_

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "pelinor/collection.h"

namespace pelinor::python {

namespace py = pybind11;

// A Windows-1252 text crossing the boundary as `str`.
struct Text {
  std::string bytes;
};

// A file name crossing the boundary as str, bytes or os.PathLike.
struct Path {
  std::string bytes;
};

// EncodeCp1252()
//
// The Windows-1252 bytes of the str `src`. Sets UnicodeEncodeError and
// throws py::error_already_set for a character with no Windows-1252 form.
std::string EncodeCp1252(py::handle src);

// DecodeCp1252()
//
// A new str holding the characters of the Windows-1252 bytes `bytes`.
py::str DecodeCp1252(std::string_view bytes);

// LibraryError: a failure the library reported with a message; raised in
// Python as pelinor.Error with the message decoded.
class LibraryError : public std::runtime_error {
 public:
  explicit LibraryError(const std::string& message)
      : std::runtime_error(message) {}
};

// Check()
//
// Throws LibraryError(`message`) unless `ok`. A failure without a message
// gets `fallback`.
inline void Check(bool ok, const std::string& message,
                  const char* fallback = "The operation failed") {
  if (!ok) throw LibraryError(message.empty() ? fallback : message);
}

// RegisterErrors()
//
// Creates pelinor.Error in `m` and translates LibraryError into it.
void RegisterErrors(py::module_& m);

// An optional object argument: None or a bound T, passed on as a pointer
// (null for None) that stays valid for the call. pybind11's own pointer
// argument answers None only after failed look-ups costing more than the
// routines on the hot path themselves.
template <typename T>
struct Maybe {
  T* ptr = nullptr;
};

}  // namespace pelinor::python

namespace pybind11::detail {

template <typename T>
struct type_caster<pelinor::python::Maybe<T>> {
  PYBIND11_TYPE_CASTER(pelinor::python::Maybe<T>, const_name("Optional[") +
                                                      make_caster<T>::name +
                                                      const_name("]"));

  bool load(handle src, bool convert) {
    if (src.is_none()) {
      value.ptr = nullptr;
      return true;
    }
    make_caster<T> inner;
    if (!inner.load(src, convert)) return false;
    value.ptr = static_cast<T*>(inner);
    return true;
  }

  static handle cast(const pelinor::python::Maybe<T>&, return_value_policy,
                     handle) {
    return none().release();
  }
};

template <>
struct type_caster<pelinor::python::Text> {
  PYBIND11_TYPE_CASTER(pelinor::python::Text, const_name("str"));

  bool load(handle src, bool) {
    if (PyUnicode_Check(src.ptr())) {
      value.bytes = pelinor::python::EncodeCp1252(src);
      return true;
    }
    if (PyBytes_Check(src.ptr())) {
      value.bytes.assign(PyBytes_AS_STRING(src.ptr()),
                         static_cast<size_t>(PyBytes_GET_SIZE(src.ptr())));
      return true;
    }
    return false;
  }

  static handle cast(const pelinor::python::Text& src, return_value_policy,
                     handle) {
    return pelinor::python::DecodeCp1252(src.bytes).release();
  }
};

template <>
struct type_caster<pelinor::python::Path> {
  PYBIND11_TYPE_CASTER(pelinor::python::Path, const_name("os.PathLike[str]"));

  bool load(handle src, bool) {
    if (!PyUnicode_Check(src.ptr()) && !PyBytes_Check(src.ptr()) &&
        !PyObject_HasAttrString(src.ptr(), "__fspath__")) {
      return false;
    }
    PyObject* encoded = nullptr;
    if (!PyUnicode_FSConverter(src.ptr(), &encoded)) throw error_already_set();
    object bytes = reinterpret_steal<object>(encoded);
    value.bytes.assign(PyBytes_AS_STRING(encoded),
                       static_cast<size_t>(PyBytes_GET_SIZE(encoded)));
    return true;
  }

  static handle cast(const pelinor::python::Path& src, return_value_policy,
                     handle) {
    return PyUnicode_DecodeFSDefaultAndSize(
        src.bytes.data(), static_cast<Py_ssize_t>(src.bytes.size()));
  }
};

}  // namespace pybind11::detail

namespace pelinor::python {

// How the items of a collection cross the boundary: objects as they are,
// texts as str.
template <typename T>
struct ItemCast {
  using Py = T;
  static const T& Out(const T& item) { return item; }
  static T In(const T& item) { return item; }
};
template <>
struct ItemCast<std::string> {
  using Py = Text;
  static Text Out(const std::string& item) { return Text{item}; }
  static std::string In(const Text& item) { return item.bytes; }
};

// BindCollection()
//
// Binds Collection<T> as class `name`: a Python sequence (len(), 0-based
// [i] with negative indices, iteration, `in` by item) that also keeps the
// library's members: Count(), one-based Item(i), Item(key), Add(item,
// key), Remove(i | key), Clear(), Key(i), IndexOf(key), Contains(key).
// Look-ups that find nothing raise IndexError or KeyError where the
// library would answer an empty item.
template <typename T>
void BindCollection(py::module_& m, const char* name, const char* doc) {
  using C = Collection<T>;
  using I = ItemCast<T>;
  using Py = typename I::Py;
  auto item_at = [](const C& c, int i) -> Py {
    if (i < 1 || i > c.Count()) {
      throw py::index_error("index " + std::to_string(i) + " is outside 1.." +
                            std::to_string(c.Count()));
    }
    return I::Out(c.Item(i));
  };
  auto item_keyed = [](const C& c, const Text& key) -> Py {
    int i = c.IndexOf(key.bytes);
    if (i == 0) throw py::key_error(DecodeCp1252(key.bytes));
    return I::Out(c.Item(i));
  };
  py::class_<C>(m, name, doc)
      .def(py::init<>(), "An empty collection.")
      .def("__len__", &C::Count)
      .def(
          "__getitem__",
          [item_at](const C& c, int i) {
            if (i < 0) i += c.Count();
            if (i < 0 || i >= c.Count()) {
              throw py::index_error("collection index out of range");
            }
            return item_at(c, i + 1);
          },
          py::arg("index"), "The item at the 0-based `index`, as a list.")
      .def("__getitem__", item_keyed, py::arg("key"),
           "The item keyed `key`, ignoring case; KeyError when none is.")
      .def(
          "__iter__",
          [](const C& c) {
            py::list items;
            for (const T& item : c) items.append(py::cast(I::Out(item)));
            return py::iter(items);
          },
          "Iterates over the items in order.")
      .def(
          "__contains__",
          [](const C& c, const Py& item) {
            for (const T& x : c) {
              if (x == I::In(item)) return true;
            }
            return false;
          },
          py::arg("item"), "Whether `item` is in the collection.")
      .def(
          "__contains__", [](const C&, const py::object&) { return false; },
          py::arg("item"), "Objects of another type are never items.")
      .def("Count", &C::Count, "The number of items.")
      .def("Item", item_at, py::arg("i"),
           "The item at the one-based index `i`; IndexError when out of "
           "range.")
      .def("Item", item_keyed, py::arg("key"),
           "The item keyed `key`, ignoring case; KeyError when none is.")
      .def(
          "Add",
          [](C& c, const Py& item, const Text& key) {
            if (!c.Add(I::In(item), key.bytes)) {
              throw py::key_error(DecodeCp1252(key.bytes));
            }
          },
          py::arg("item"), py::arg("key") = Text{},
          "Appends `item`, keyed by `key` when not empty. KeyError when "
          "another item has that key (nothing is added).")
      .def(
          "Remove",
          [](C& c, int i) {
            if (!c.Remove(i)) throw py::index_error("index out of range");
          },
          py::arg("i"), "Removes the item at the one-based index `i`.")
      .def(
          "Remove",
          [](C& c, const Text& key) {
            if (!c.Remove(key.bytes)) {
              throw py::key_error(DecodeCp1252(key.bytes));
            }
          },
          py::arg("key"), "Removes the item keyed `key`.")
      .def("Clear", &C::Clear, "Removes every item, last to first.")
      .def(
          "Key", [](const C& c, int i) { return Text{c.Key(i)}; }, py::arg("i"),
          "The key of the item at `i` (\"\" when none).")
      .def(
          "IndexOf",
          [](const C& c, const Text& key) { return c.IndexOf(key.bytes); },
          py::arg("key"), "The one-based index of the item keyed `key`, or 0.")
      .def(
          "Contains",
          [](const C& c, const Text& key) { return c.Contains(key.bytes); },
          py::arg("key"), "Whether an item is keyed `key`.");
}

// TextMember()
//
// Binds the std::string member `member` of `C` as a str property.
template <typename Class, typename C = typename Class::type>
void TextMember(Class& cls, const char* name, std::string C::*member,
                const char* doc = "") {
  cls.def_property(
      name, [member](const C& c) { return Text{c.*member}; },
      [member](C& c, const Text& v) { c.*member = v.bytes; }, doc);
}

// TextMembers() / IntMembers()
//
// Bind several std::string (as str) or int32_t members of `C` at once.
template <typename Class>
void TextMembers(
    Class& cls,
    std::initializer_list<std::pair<const char*, std::string Class::type::*>>
        members) {
  for (const auto& [name, member] : members) TextMember(cls, name, member);
}
template <typename Class>
void IntMembers(
    Class& cls,
    std::initializer_list<std::pair<const char*, int32_t Class::type::*>>
        members) {
  for (const auto& [name, member] : members) cls.def_readwrite(name, member);
}

// Repr()
//
// "<Class Name='...' value='...' Status=n>" for objects with a name, a
// value and a status, so that printing one in Python shows what it holds.
template <typename Class, typename C = typename Class::type>
void Repr(Class& cls, const char* name) {
  cls.def("__repr__", [name](const C& c) {
    return py::str("<{} Name={!r} value={!r} Status={}>")
        .format(name, DecodeCp1252(c.Name), DecodeCp1252(c.value), c.Status);
  });
}

// The binders of each part of the library.
void BindSnapshot(py::module_& m);
void BindValues(py::module_& m);
void BindFiles(py::module_& m);
void BindQueue(py::module_& m);
void BindCapture(py::module_& m);

}  // namespace pelinor::python

#endif  // PELINOR_PYTHON_BINDING_UTIL_H_
