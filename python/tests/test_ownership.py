"""Objects shared across the boundary stay valid as long as Python holds them."""

import gc

import pelinor


def _document_with_field():
    doc = pelinor.cDocumentData.New()
    field = doc.CreateField()
    field.Name = "Total"
    field.value = "\u00a312.50"
    return doc, field


def test_field_outlives_its_document():
    doc, field = _document_with_field()
    assert field.Document is doc
    del doc
    gc.collect()
    assert field.Document is None
    assert field.value == "\u00a312.50"
    assert repr(field) == "<cFieldData Name='Total' value='\u00a312.50' Status=1>"
    field.FormatDataValue()  # no profile: the value stays, nothing crashes
    assert field.DataType == 0


def test_cell_outlives_its_row_and_document():
    doc = pelinor.cDocumentData.New()
    row = doc.CreateLineData()
    cell = pelinor.cLineItemData()
    cell.Name = "Quantity"
    cell.value = "1O"
    row.colLineItemData.Add(cell)
    del doc, row
    gc.collect()
    assert cell.LineData is None
    cell.DataType = 2
    cell.FormatDataValue()
    assert cell.value == "10"


def test_collection_keeps_its_owner_alive():
    doc, field = _document_with_field()
    fields = doc.Fields
    del doc
    gc.collect()
    assert len(fields) == 1
    assert fields[0] is field
    assert fields[0].Document is not None  # the document is still held


def test_the_same_object_is_the_same_python_object():
    doc, field = _document_with_field()
    idx, found = doc.Find("TOTAL")
    assert idx == 1
    assert found is field is doc.Fields.Item(1) is doc.Fields[0]


def test_copies_are_independent():
    doc, field = _document_with_field()
    copy = doc.Copy()
    copy.Fields[0].value = "changed"
    assert field.value == "\u00a312.50"
    assert copy.Fields[0].Document is copy


def test_filters_share_entries_with_their_queue():
    queue = pelinor.cQueue()
    for doc_id, state in [("A", 0), ("B", 3), ("C", 3)]:
        entry = pelinor.cQueueEntry()
        entry.DocId = doc_id
        entry.PELINOR_State = state
        queue.QueueEntries.Add(entry)
    export = queue.FilterToExport()
    assert [e.DocId for e in export.QueueEntries] == ["B", "C"]
    export.QueueEntries[0].Reject = True
    assert queue.QueueEntries[1].Reject is True
    # A given queue is appended to and answered.
    again = queue.FilterToExport(export)
    assert again is export and len(export.QueueEntries) == 4


def test_profile_shared_by_document_and_template(examples):
    profile = pelinor.cProfile()
    profile.ReadSettings("Invoices", examples / "profiles" / "Invoices.ini")
    tpl = pelinor.cTemplate.New()
    tpl.Profile = profile
    doc = pelinor.cDocumentData.New()
    doc.Profile = profile
    doc.Template = tpl
    del profile
    gc.collect()
    assert doc.Profile is tpl.Profile
    assert len(doc.Profile.FieldTypes) > 0
