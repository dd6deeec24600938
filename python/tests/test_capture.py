"""The capture run from Python: in memory, over files, with callbacks."""

import gc
import threading

import pelinor
import pytest


def _open_document(examples, name="INV0001.tag"):
    profile = pelinor.cProfile()
    profile.ReadSettings("Invoices", examples / "profiles" / "Invoices.ini")
    tpl = pelinor.cTemplate.New()
    tpl.Profile = profile
    tpl.ReadSettings(examples / "templates" / "AcmeSupplies.tpl")
    doc = pelinor.cDocumentData.New()
    doc.ReadSettings(examples / "documents" / name)
    doc.Profile, doc.Template = profile, tpl
    return doc


def test_capture_document_cleans_fields_in_place(examples):
    doc = _open_document(examples)
    report = pelinor.CaptureDocument(doc)
    cases = [
        ("InvoiceDate", "12 0CT 2003", "12/10/2003"),
        ("TotalAmount", "\u00a31,234.5O", "1234.50"),
        ("SupplierPostCode", "SW1A1AA", "SW1A 1AA"),
    ]
    values = {v.Name: v for v in report.Values}
    for name, raw, result in cases:
        _, field = doc.Find(name)
        assert (field.value, field.Status) == (result, 0), name
        assert (values[name].Raw, values[name].Result) == (raw, result)
    assert report.Status == doc.Status == 0 and report.InvalidCount == 0
    total = values["TotalAmount"]
    assert total.Changed and total.Risk in ("repair", "guess")
    assert any(st.Before == "O" and st.After == "0" for st in total.Steps)
    assert not values["Currency"].Changed and values["Currency"].Risk == ""


def test_review_guess_marks_values_to_check(examples):
    doc = _open_document(examples)
    options = pelinor.cCaptureOptions()
    options.ReviewGuess = True
    report = pelinor.CaptureDocument(doc, options)
    review = [v for v in report.Values if v.Status == pelinor.kCaptureReviewStatus]
    assert review and len(review) == report.ReviewCount
    for v in review:
        assert v.Risk == "guess"
        assert v.Message.startswith(pelinor.kReviewMessagePrefix), v


def test_capture_with_a_snapshot_ignores_the_registry(examples, monkeypatch):
    us = pelinor.cSettingsSnapshot.Make("US", examples / "profiles")
    assert us.Locale() == "US"
    monkeypatch.setenv("PELINOR_REGISTRY", "/nonexistent/registry.reg")
    doc = _open_document(examples)
    pelinor.CaptureDocument(doc, settings=us)
    assert doc.Find("InvoiceDate")[1].value == "10/12/2003"


def test_capture_needs_a_profile():
    with pytest.raises(ValueError):
        pelinor.CaptureDocument(pelinor.cDocumentData.New())


def test_captured_values_outlive_the_document(examples):
    doc = _open_document(examples)
    report = pelinor.CaptureDocument(doc)
    field = doc.Fields[0]
    del doc
    gc.collect()
    assert field.Status == 0 and report.Values[0].Result == field.value


def _run(examples, out_dir, jobs):
    options = pelinor.cCaptureRunOptions()
    options.ProfileFile = examples / "profiles" / "Invoices.ini"
    options.TemplateFile = examples / "templates" / "AcmeSupplies.tpl"
    options.OutDir = out_dir
    options.Jobs = jobs
    return pelinor.cCaptureRun.Open(options)


def test_run_reports_in_input_order_on_several_threads(examples, tmp_path):
    files = pelinor.CollectTagFiles([examples / "documents"])
    assert [p.rsplit("/", 1)[1] for p in files] == [
        "INV0001.tag", "INV0002.tag", "INV0003.tag"]
    one = _run(examples, tmp_path / "one", 1).Run(files)
    seen = []
    run = _run(examples, tmp_path / "two", 2)
    assert run.Run(files, lambda r: seen.append(
        (r.Index, threading.get_ident())) is None) == []
    assert [i for i, _ in seen] == [0, 1, 2]
    assert {t for _, t in seen} == {threading.get_ident()}
    for r in one:
        a = (tmp_path / "one" / r.File.rsplit("/", 1)[1]).read_bytes()
        b = (tmp_path / "two" / r.File.rsplit("/", 1)[1]).read_bytes()
        assert a == b and r.Captured and r.Error == "" and not r.Unchanged
    # Run again, every file already holds what the run writes: none is
    # replaced.
    inodes = {p.name: p.stat().st_ino for p in (tmp_path / "one").iterdir()}
    again = _run(examples, tmp_path / "one", 1).Run(files)
    assert all(r.Unchanged and r.Written for r in again)
    assert inodes == {
        p.name: p.stat().st_ino for p in (tmp_path / "one").iterdir()}


def test_run_callback_can_stop_and_raise(examples, tmp_path):
    files = pelinor.CollectTagFiles([examples / "documents"])
    run = _run(examples, tmp_path, 1)
    seen = []
    run.Run(files, lambda r: seen.append(r.Index) or False)
    assert seen == [0]

    def boom(result):
        raise RuntimeError("stop here")

    for jobs in (1, 2):
        with pytest.raises(RuntimeError, match="stop here"):
            _run(examples, tmp_path, jobs).Run(files, boom)


def test_run_failures_carry_the_library_message(examples, tmp_path):
    options = pelinor.cCaptureRunOptions()
    options.ProfileFile = examples / "profiles" / "Invoices.ini"
    options.OutDir = tmp_path
    options.InPlace = True
    with pytest.raises(pelinor.Error) as info:
        pelinor.cCaptureRun.Open(options)
    assert str(info.value) == "--out-dir and --in-place cannot be used together"
    with pytest.raises(pelinor.Error):
        pelinor.CollectTagFiles([tmp_path / "missing"])
    result = _run(examples, tmp_path, 1).CaptureFile(tmp_path / "none.tag")
    assert not result.Captured and result.Written == ""
    assert "Error reading document tags file" in result.Error
