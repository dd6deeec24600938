"""The type stub matches the module it describes."""

import ast
import os
import pathlib
import subprocess
import sys

import pelinor
from pelinor import _pelinor

STUB = pathlib.Path(__file__).resolve().parents[1] / "pelinor" / "__init__.pyi"
TOOL = pathlib.Path(__file__).resolve().parents[1] / "tools" / "make_stub.py"


def test_stub_is_the_one_the_module_gives():
    made = subprocess.run([sys.executable, str(TOOL)], check=True,
                          capture_output=True, text=True,
                          env=dict(os.environ)).stdout
    assert made == STUB.read_text(), (
        "python/pelinor/__init__.pyi is out of date; run python/tools/make_stub.py")


def test_every_public_name_is_declared():
    tree = ast.parse(STUB.read_text())
    declared = set()
    for node in tree.body:
        if isinstance(node, (ast.ClassDef, ast.FunctionDef)):
            declared.add(node.name)
        elif isinstance(node, ast.AnnAssign):
            declared.add(node.target.id)
    public = {n for n in dir(_pelinor) if not n.startswith("_")}
    assert public - declared == set()
    assert {n for n in declared if not n.startswith("_")} - public == set()


def test_classes_have_docstrings_and_show_as_pelinor():
    for name in dir(pelinor):
        obj = getattr(pelinor, name)
        if isinstance(obj, type) and name != "Error":
            assert obj.__module__ == "pelinor", name
            assert obj.__doc__, name
    assert "FormatAmount(self: pelinor.cFormat, value: str" in pelinor.cFormat.FormatAmount.__doc__
