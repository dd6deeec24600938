"""The repair trace through the bindings: steps as str, positions as indices."""

import pelinor
import pytest

FMT = pelinor.cFormat()


@pytest.mark.parametrize("call,text,result", [
    (lambda t, tr: FMT.FormatAmount(t, 4, tr), "\u00a31,234.5O", "1234.50"),
    (lambda t, tr: FMT.FormatNumeric(t, 2, tr), "1O5", "105"),
    (lambda t, tr: FMT.FormatPostCode(t, 5, tr), "5W1A1AA", "SW1A 1AA"),
    (lambda t, tr: pelinor.cPatternEngine().CoerceDate(t, "DATEGB", tr),
     "12 0CT 2003", "12/10/2003"),
    (lambda t, tr: pelinor.EvaluatePattern(t, "0000", bCoerce=True, trace=tr),
     "1O5I", "1051"),
])
def test_steps_point_into_the_str_given(call, text, result):
    trace = pelinor.cRepairTrace()
    assert call(text, None) == result
    assert call(text, trace) == result  # tracing never changes a result
    assert len(trace) == trace.Size() > 0
    for step in trace.Steps():
        assert step.Risk in ("cosmetic", "repair", "guess"), step
        assert 0 <= step.Position <= len(text), step
        if step.Position and step.Before:
            at = step.Position - 1
            assert text[at:at + len(step.Before)] == step.Before, step
    assert trace.Highest() in ("cosmetic", "repair", "guess")
    assert trace.Sentences() == "; ".join(s.Sentence for s in trace.Steps())


def test_a_misread_letter_is_a_step():
    trace = pelinor.cRepairTrace()
    FMT.FormatAmount("\u00a31,234.5O", 4, trace=trace)
    repaired = [s for s in trace.Steps() if s.Before == "O"]
    assert repaired and repaired[0].After == "0" and repaired[0].Position == 9


def test_traces_accumulate_until_cleared():
    trace = pelinor.cRepairTrace()
    assert trace.Highest() == "" and trace.Sentences() == ""
    FMT.FormatAmount("1O.5O", 10004, trace)
    first = len(trace)
    FMT.FormatAmount("2O.5O", 10004, trace)
    assert len(trace) == 2 * first
    assert trace.Sentences(first) == trace.Sentences()[-len(trace.Sentences(first)):]
    trace.Clear()
    assert len(trace) == 0
