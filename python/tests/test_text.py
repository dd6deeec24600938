"""Text crossing the boundary: str <-> Windows-1252 bytes, paths, files."""

import pelinor
import pytest

# Characters and the Windows-1252 bytes they are stored as.
CASES = [
    ("plain", b"plain"),
    ("\u00a31,234.50", b"\xa31,234.50"),  # pound sign
    ("\u20ac 12", b"\x80 12"),  # euro sign: 0x80
    ("na\u00efve caf\u00e9", b"na\xefve caf\xe9"),
    ("\u2018q\u2019 \u201cqq\u201d \u2013 \u2014", b"\x91q\x92 \x93qq\x94 \x96 \x97"),
    ("\u0160\u0161\u017d\u017e\u0178\u0152\u0153", b"\x8a\x9a\x8e\x9e\x9f\x8c\x9c"),
    ("\x81\x8d\x8f\x90\x9d", b"\x81\x8d\x8f\x90\x9d"),  # undefined bytes
    ("\u00ff", b"\xff"),
]


@pytest.mark.parametrize("text,stored", CASES)
def test_text_is_stored_as_windows_1252(tmp_path, text, stored):
    doc = pelinor.cDocumentData.New()
    field = doc.CreateField()
    field.Name = "F"
    field.value = text
    assert field.value == text
    path = tmp_path / "doc.tag"
    doc.WriteSettings(path)
    assert b"Field1Value:" + stored + b"\r\n" in path.read_bytes()
    back = pelinor.cDocumentData.New()
    back.ReadSettings(path)
    assert back.Fields[0].value == text


def test_every_byte_survives_a_round_trip(tmp_path):
    raw = bytes(b for b in range(1, 256) if b not in b"\r\n")
    doc = pelinor.cDocumentData.New()
    field = doc.CreateField()
    field.value = raw  # bytes are taken as Windows-1252 already
    text = field.value
    assert isinstance(text, str) and len(text) == len(raw)
    field.value = text
    path = tmp_path / "doc.tag"
    doc.WriteSettings(path)
    assert b"Field1Value:" + raw + b"\r\n" in path.read_bytes()


@pytest.mark.parametrize("text,position", [
    ("\u0107", 0),  # c with acute: not in Windows-1252
    ("ok \U0001f600", 3),
    ("\u6f22\u5b57", 0),
    ("abc\u0100", 3),
])
def test_unconvertible_characters_raise(text, position):
    field = pelinor.cFieldData()
    field.value = "before"
    with pytest.raises(UnicodeEncodeError) as info:
        field.value = text
    assert info.value.encoding == "windows-1252"
    assert info.value.start == position
    assert "no Windows-1252 form" in str(info.value)
    assert field.value == "before"  # nothing half-assigned
    with pytest.raises(UnicodeEncodeError):
        pelinor.cFormat().FormatAmount(text)


def test_results_are_str():
    f = pelinor.cFormat()
    assert f.FormatAmount(b"\xa31,234.5O") == "1234.50"
    assert f.FormatDescr(4) == "AMOUNT"
    assert type(f.BiasToNumber("O1")) is str


def test_file_names_are_file_system_bytes(tmp_path, examples):
    src = (examples / "documents" / "INV0001.tag").read_bytes()
    name = tmp_path / "d\u00fcsseldorf \u0107 \u6f22.tag"  # not Windows-1252
    name.write_bytes(src)
    doc = pelinor.cDocumentData.New()
    doc.ReadSettings(name)  # a pathlib.Path
    doc.ReadSettings(str(name))  # and a str, appending again
    assert len(doc.Fields) == 2 * 9
    out = bytes(tmp_path) + b"/out\xff.tag"  # bytes, not valid UTF-8
    doc.WriteSettings(out)
    assert (tmp_path / "out\udcff.tag").exists()


def test_unchanged_documents_write_back_byte_for_byte(tmp_path, examples):
    for src in sorted((examples / "documents").glob("*.tag")):
        doc = pelinor.cDocumentData.New()
        doc.ReadSettings(src)
        once = tmp_path / ("once-" + src.name)
        doc.WriteSettings(once)
        again = pelinor.cDocumentData.New()
        again.ReadSettings(once)
        twice = tmp_path / ("twice-" + src.name)
        again.WriteSettings(twice)
        assert once.read_bytes() == twice.read_bytes(), src.name


def test_registry_and_settings_texts(tmp_path, examples):
    reg = pelinor.cRegistry()
    hkcu = pelinor.kHkeyCurrentUser
    assert reg.RegSaveValue(hkcu, "App", "Sec", "Who", "J\u00f6rg \u20ac") == 0
    assert reg.RegGetValue(hkcu, "App", "Sec", "Who") == "J\u00f6rg \u20ac"
    assert reg.RegGetValue(hkcu, "App", "Sec", "None", "d\u00e9faut") == "d\u00e9faut"
    assert pelinor.ReadServerSetting("HalvernLocale") == "GB"
    ini = tmp_path / "s.ini"
    ini.write_bytes(b"[Main]\r\nName: Caf\xe9 \r\nCount:2.5\r\n")
    f = pelinor.cIniFile()
    assert f.GetSettingString("main", "name", "", ini) == "Caf\u00e9"
    assert f.GetSettingLong("Main", "Count", 0, ini) == 2  # half to even
    assert f.FindHeader("Main", ini) and not f.FindHeader("Other", ini)
