"""Shared fixtures: the bundled example installation and its registry."""

import os
import pathlib

import pytest

SOURCE_DIR = pathlib.Path(
    os.environ.get("PELINOR_SOURCE_DIR",
                   pathlib.Path(__file__).resolve().parents[2]))
EXAMPLES = SOURCE_DIR / "examples"


@pytest.fixture(autouse=True)
def example_registry(monkeypatch, tmp_path):
    """Every test reads the example machine settings and a scratch user store."""
    monkeypatch.setenv("PELINOR_REGISTRY", str(EXAMPLES / "registry.reg"))
    monkeypatch.setenv("PELINOR_USER_REGISTRY", str(tmp_path / "user.reg"))
    monkeypatch.delenv("PELINOR_LOG_FORMAT", raising=False)


@pytest.fixture
def examples():
    return EXAMPLES

