"""Stored objects through the bindings: properties, round trips, queues."""


import pelinor
import pytest


def test_template_inherits_until_set(examples):
    profile = pelinor.cProfile()
    profile.ReadSettings("Invoices", examples / "profiles" / "Invoices.ini")
    tpl = pelinor.cTemplate.New()
    tpl.Profile = profile
    cases = [("FlattenDuplex", 0), ("OCRPages", 3), ("LineLevel", 0)]
    for name, own in cases:
        assert getattr(tpl, name) == getattr(profile, name), name
        setattr(profile, name, own + 7)
        assert getattr(tpl, name) == own + 7, name  # still inherited
        setattr(tpl, name, own)
        setattr(profile, name, own + 9)
        assert getattr(tpl, name) == own, name  # now the template's own
    tpl.LineDataRowSpaceMax = "\u00bd"
    assert tpl.LineDataRowSpaceMax == "\u00bd"


def test_field_resolves_over_template_and_profile(examples):
    profile = pelinor.cProfile()
    profile.ReadSettings("Invoices", examples / "profiles" / "Invoices.ini")
    doc = pelinor.cDocumentData.New()
    doc.Profile = profile
    field = doc.CreateField()
    field.Name = "TotalAmount"
    ft = profile.FindField("totalamount")
    assert ft is not None and field.DataType == ft.DataType != 0
    field.DataType = 3  # an explicit type wins
    assert field.DataType == 3 and field.DefaultDataType() == ft.DataType
    assert profile.FindField("NoSuchField") is None
    hdr, idx = profile.FindLineItemHdr("quantity")
    assert profile.LineItemHdrs.Item(idx) is hdr


def test_template_round_trip_is_byte_exact(tmp_path, examples):
    src = examples / "templates" / "AcmeSupplies.tpl"
    tpl = pelinor.cTemplate.New()
    tpl.ReadSettings(src)
    once, twice = tmp_path / "a.tpl", tmp_path / "b.tpl"
    tpl.WriteSettings(once)
    again = pelinor.cTemplate.New()
    again.ReadSettings(once)
    again.WriteSettings(twice)
    assert once.read_bytes() == twice.read_bytes()
    zones = tpl.FindFieldZones("invoicenumber")
    assert zones is not None and zones.Template is tpl
    copy = tpl.Copy()
    assert copy is not tpl and copy.FindFieldZones("InvoiceNumber").Template is copy


def test_queue_round_trip_and_filters(tmp_path, examples):
    queue = pelinor.cQueue()
    queue.ReadSettings(examples / "queue" / "queue.txt")
    count = len(queue.QueueEntries)
    assert count > 0
    out = tmp_path / "queue.txt"
    queue.WriteSettings(out)
    back = pelinor.cQueue()
    back.ReadSettings(out)
    assert [e.DocId for e in back.QueueEntries] == [
        e.DocId for e in queue.QueueEntries]
    idx, entry = queue.Find(queue.QueueEntries[-1].DocId.lower())
    assert idx == count and entry is queue.QueueEntries[-1]
    assert queue.Find("missing") is None
    rejected = queue.PrioritiseRejectedRecords(pelinor.kRejectedOnly)
    assert all(e.Reject for e in rejected.QueueEntries)
    rest = queue.PrioritiseRejectedRecords(pelinor.kNotRejectedOnly)
    assert len(rejected.QueueEntries) + len(rest.QueueEntries) == count


def test_reject_message_keeps_its_characters(tmp_path):
    entry = pelinor.cQueueEntry()
    path = tmp_path / "doc.reject"
    entry.WriteRejectMessage("Montant illisible: \u20ac 1 2O0", path)
    assert path.read_bytes() == b"ver0.946\r\nMontant illisible: \x80 1 2O0\r\n"
    assert pelinor.cQueueEntry().ReadRejectMessage(path) == (
        "Montant illisible: \u20ac 1 2O0")
    with pytest.raises(pelinor.Error) as info:
        pelinor.cQueueEntry().ReadRejectMessage(tmp_path / "none")
    assert str(info.value) == "Unable to open reject message file"


def test_status_file_round_trip(tmp_path, examples):
    src = examples / "queue" / "INV0001.status"
    entry = pelinor.cQueueEntry()
    entry.ReadSettings(src)
    out = tmp_path / "x.status"
    entry.WriteSettings(out)
    again = pelinor.cQueueEntry()
    again.ReadSettings(out)
    assert again.DocId == entry.DocId and again.dtTimeScanned == entry.dtTimeScanned
    copy = entry.Copy()
    copy.DocId = "other"
    assert entry.DocId != "other"


def test_profile_writer_failure_leaves_nothing(tmp_path):
    target = tmp_path / "missing-dir" / "p.ini"
    with pytest.raises(pelinor.Error) as info:
        pelinor.cProfile().WriteSettings(target)
    assert str(info.value) == "Cannot create file " + str(target)
    assert not target.exists()
