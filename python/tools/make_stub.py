"""Writes the type stub of the pelinor module from the built module itself.

    PYTHONPATH=build/release/python python3 python/tools/make_stub.py \
        > python/pelinor/__init__.pyi

The signatures and docstrings come from the bindings, so the stub cannot
drift from them; python/tests/test_stub.py checks that the stub in the
source tree is the one this script writes.
"""

import inspect
import re
import sys

import pelinor
from pelinor import _pelinor

HEADER = '''"""Type hints of the pelinor module (written by python/tools/make_stub.py)."""

import os
from typing import Callable, Iterator, List, Optional, Tuple, Union, overload

_Path = Union[str, bytes, "os.PathLike[str]"]

class Error(Exception):
    """A failure the library reported; str(e) is the library's message."""

__version__: str
'''


def clean_type(text):
    text = re.sub(r"\bpelinor\.(_pelinor\.)?", "", text).replace("os.PathLike[str]", "_Path")
    text = re.sub(r"\bfunction\b", "Callable[..., object]", text)
    return text


def split_params(text):
    params, depth, cur = [], 0, ""
    for ch in text:
        if ch in "[(":
            depth += 1
        elif ch in "])":
            depth -= 1
        if ch == "," and depth == 0:
            params.append(cur.strip())
            cur = ""
        else:
            cur += ch
    if cur.strip():
        params.append(cur.strip())
    return params


def stub_params(text):
    out = []
    for p in split_params(text):
        if p == "*args" or p == "**kwargs":
            out.append(p)
            continue
        default = None
        if "=" in p:
            p, default = [x.strip() for x in p.split("=", 1)]
        name, _, ptype = p.partition(":")
        name, ptype = name.strip(), clean_type(ptype.strip())
        if default == "None" and not ptype.startswith("Optional["):
            ptype = "Optional[%s]" % ptype
        item = name if name == "self" or not ptype else "%s: %s" % (name, ptype)
        if default is not None:
            item += " = ..."
        out.append(item)
    return ", ".join(out)


SIG = re.compile(r"^(\w+)\((.*)\)(?: -> (.+))?$")


def signatures(func):
    """(params, result, doc) for each overload of a pybind11 function."""
    doc = func.__doc__ or ""
    lines = doc.split("\n")
    if len(lines) > 1 and lines[1] == "Overloaded function.":
        parts = re.split(r"\n\d+\. ", "\n" + "\n".join(lines[3:]))[1:]
    else:
        parts = [doc]
    out = []
    for part in parts:
        first, _, rest = part.partition("\n")
        m = SIG.match(first.strip())
        if not m:
            continue
        out.append((stub_params(m.group(2)), clean_type(m.group(3) or "None"),
                    rest.strip()))
    return out


def doc_block(doc, indent):
    if not doc:
        return ""
    doc = doc.replace('"""', "'''").replace("\\", "\\\\")
    doc = doc.replace("\n", "\n" + indent).replace(indent + "\n", "\n")
    return "%s\"\"\"%s\"\"\"\n" % (indent, doc)


def emit_function(name, func, indent, static=False):
    sigs = signatures(func)
    text = ""
    for params, result, doc in sigs:
        if len(sigs) > 1:
            text += indent + "@overload\n"
        if static:
            text += indent + "@staticmethod\n"
        text += "%sdef %s(%s) -> %s:\n" % (indent, name, params, result)
        text += doc_block(doc, indent + "    ") or indent + "    ...\n"
    return text


def property_type(prop):
    doc = prop.fget.__doc__ or ""
    m = re.match(r"^\(self: [^)]*\) -> ([^\n]+)", doc)
    return (clean_type(m.group(1)) if m else "object",
            doc.partition("\n")[2].strip())


SPECIAL = {"__init__", "__len__", "__getitem__", "__iter__", "__contains__"}


def emit_class(cls):
    text = "class %s:\n" % cls.__name__
    text += doc_block(cls.__doc__ or "", "    ")
    for name, attr in sorted(cls.__dict__.items()):
        if name.startswith("_") and name not in SPECIAL:
            continue
        if isinstance(attr, property):
            ptype, doc = property_type(attr)
            text += "    %s: %s\n" % (name, ptype)
            text += doc_block(doc, "    ")
        elif isinstance(attr, staticmethod):
            text += emit_function(name, attr.__func__, "    ", static=True)
        elif callable(attr):
            fn = emit_function(name, attr, "    ")
            if name == "__iter__":
                item = "object"
                fn = re.sub(r"-> \w+:", "-> Iterator[%s]:" % item_type(cls), fn)
            text += fn
    return text + "\n"


def item_type(cls):
    sig = signatures(cls.Item)
    return sig[0][1] if sig else "object"


def main():
    out = [HEADER]
    names = sorted(n for n in dir(_pelinor) if not n.startswith("_"))
    for n in names:
        obj = getattr(_pelinor, n)
        if isinstance(obj, (int, str)) and not isinstance(obj, bool):
            out.append("%s: %s\n" % (n, type(obj).__name__))
    out.append("\n")
    for n in names:
        obj = getattr(_pelinor, n)
        if isinstance(obj, type) and n != "Error":
            out.append(emit_class(obj))
    for n in names:
        obj = getattr(_pelinor, n)
        if callable(obj) and not isinstance(obj, type):
            out.append(emit_function(n, obj, "") + "\n")
    sys.stdout.write("".join(out).rstrip("\n") + "\n")


if __name__ == "__main__":
    main()
