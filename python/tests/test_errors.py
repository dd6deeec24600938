"""Failures the library reports raise pelinor.Error with its message."""

import pelinor
import pytest


def test_error_is_an_exception_class():
    assert issubclass(pelinor.Error, Exception)
    assert not issubclass(pelinor.Error, ValueError)


def test_reader_messages(tmp_path):
    missing = str(tmp_path / "none.ini")
    bad_version = tmp_path / "bad.tag"
    bad_version.write_bytes(b"ver0.946\r\nDocStatus:x\r\n")
    cases = [
        (lambda: pelinor.cProfile().ReadSettings("P", missing),
         "Cannot find file " + missing),
        (lambda: pelinor.cTemplate.New().ReadSettings(missing),
         "Cannot find file " + missing),
        (lambda: pelinor.cIniFile().GetSettingString("Main", "A", "d", missing),
         "Cannot find file " + missing),
        (lambda: pelinor.cDocumentData.New().ReadSettings(bad_version),
         "Error reading document tags file. Incorrect parameter"),
        (lambda: pelinor.cQueue().ReadSettings(missing),
         "Unable to open queue file"),
    ]
    for call, message in cases:
        with pytest.raises(pelinor.Error) as info:
            call()
        assert str(info.value) == message


@pytest.mark.parametrize("spec,message", [
    ('(("A"))', "Nested group in pattern specification"),
    ("()", "Empty group in pattern specification"),
    ("{#", "Unclosed brace section in pattern specification"),
])
def test_pattern_messages(spec, message):
    engine = pelinor.cPatternEngine()
    with pytest.raises(pelinor.Error) as info:
        engine.LoadSBSExpression(spec)
    assert str(info.value) == message


def test_evaluation_failure_carries_the_library_message():
    with pytest.raises(pelinor.Error) as info:
        pelinor.EvaluatePattern("AB12", '"XY"00')
    assert str(info.value) == pelinor.kPatternValidationError
    assert pelinor.EvaluatePattern("AB12", '"AB"00') == "AB12"
    assert pelinor.EvaluatePattern("1O5I", "0000", bCoerce=True) == "1051"


def test_what_was_read_before_a_failure_stays(tmp_path, examples):
    lines = (examples / "documents" / "INV0001.tag").read_bytes().split(b"\r\n")
    # Cut the file inside the second field's records.
    cut = tmp_path / "cut.tag"
    cut.write_bytes(b"\r\n".join(lines[:16]) + b"\r\n")
    doc = pelinor.cDocumentData.New()
    with pytest.raises(pelinor.Error):
        doc.ReadSettings(cut)
    assert doc.Fields[0].value == "INV-0O1234"


def test_messages_in_windows_1252_come_out_as_str(tmp_path):
    name = tmp_path / "caf\u00e9.ini"
    with pytest.raises(pelinor.Error) as info:
        pelinor.cProfile().ReadSettings("P", name)
    # The file name is UTF-8 on disk; the message shows its bytes as
    # Windows-1252 characters, never as an undecodable str.
    assert str(info.value).startswith("Cannot find file ")
    str(info.value).encode("utf-8")


def test_no_failure_no_exception(tmp_path):
    assert pelinor.cFormat().FormatAmount("abc") is None
    assert pelinor.cFormat().ValidateRawDate("not a date") is None
    assert pelinor.cDocumentData.New().Find("nothing") is None
