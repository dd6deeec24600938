"""Collections as Python sequences, with the library's one-based members."""

import pelinor
import pytest


def _fields(*names):
    doc = pelinor.cDocumentData.New()
    for name in names:
        f = pelinor.cFieldData()
        f.Name = name
        doc.Fields.Add(f, name)
    return doc


def test_sequence_protocol():
    doc = _fields("A", "B", "C")
    fields = doc.Fields
    assert len(fields) == fields.Count() == 3
    assert [f.Name for f in fields] == ["A", "B", "C"]
    cases = [(0, "A"), (2, "C"), (-1, "C"), (-3, "A")]
    for index, name in cases:
        assert fields[index].Name == name, index
    for index in (3, -4):
        with pytest.raises(IndexError):
            fields[index]
    assert fields[1] in fields
    assert pelinor.cFieldData() not in fields
    assert "A" not in fields and 1 not in fields  # not items, not keys


def test_one_based_item_and_keys():
    fields = _fields("Alpha", "Beta").Fields
    assert fields.Item(1).Name == "Alpha"
    assert fields.Item(2).Name == "Beta"
    for bad in (0, 3):
        with pytest.raises(IndexError):
            fields.Item(bad)
    assert fields.Item("BETA").Name == "Beta"  # keys ignore case
    assert fields["alpha"].Name == "Alpha"
    with pytest.raises(KeyError):
        fields.Item("Gamma")
    assert fields.IndexOf("beta") == 2 and fields.IndexOf("x") == 0
    assert fields.Contains("ALPHA") and not fields.Contains("x")
    assert fields.Key(2) == "Beta"


def test_add_remove_clear():
    fields = _fields("A", "B", "C").Fields
    with pytest.raises(KeyError):
        fields.Add(pelinor.cFieldData(), "a")  # key taken: nothing added
    assert len(fields) == 3
    fields.Remove(1)
    assert [f.Name for f in fields] == ["B", "C"]
    fields.Remove("c")
    assert [f.Name for f in fields] == ["B"]
    with pytest.raises(KeyError):
        fields.Remove("c")
    fields.Clear()
    assert len(fields) == 0 and list(fields) == []


def test_string_lists_hold_str(examples):
    profile = pelinor.cProfile()
    profile.Allowed.Add("J\u00f6rg")
    profile.Allowed.Add("ann")
    assert list(profile.Allowed) == ["J\u00f6rg", "ann"]
    assert "J\u00f6rg" in profile.Allowed
    assert profile.FindAllowableUser("J\u00f6rg")
    assert not profile.FindAllowableUser("Ann")  # user names keep case
    with pytest.raises(UnicodeEncodeError):
        profile.Allowed.Add("\u0107")
    assert len(profile.Allowed) == 2


def test_pattern_engine_lists():
    engine = pelinor.cPatternEngine()
    engine.LoadSBSExpression('"AB"|00')
    assert len(engine.RegExpFormats) == len(engine.Elements()) == 2
    assert all(isinstance(e, str) for e in engine.RegExpFormats)
