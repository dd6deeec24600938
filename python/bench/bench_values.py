"""Per-value cost and accuracy of cleaning OCR dates, amounts and postcodes
from Python: the pelinor module against the general-purpose parsers a
script would otherwise use (dateparser for dates, babel for amounts, a
regular expression for postcodes, which neither package reads).

    PYTHONPATH=build/release/python /usr/bin/python3 python/bench/bench_values.py

Every input has the value a person reads in it (None: no value). An answer
is right when it equals that value, rejected when the parser gives none,
and wrong when it gives another value: a wrong value is the costly case,
since it passes on silently. Times are per value (each value's best of
several runs; mean and median over the corpus), beside a floor (a Python
call that only strips its argument) measured in the same run. Prints a
Markdown table; -v also lists every answer that is not right.
"""

import decimal
import os
import pathlib
import re
import statistics
import sys
import time
import warnings

import pelinor

ROOT = pathlib.Path(__file__).resolve().parents[2]
os.environ.setdefault("PELINOR_REGISTRY", str(ROOT / "examples" / "registry.reg"))

# (OCR text, the date a person reads as dd/mm/yyyy) with the day first.
DATES = [
    ("01/02/2003", "01/02/2003"),
    ("1.2.03", "01/02/2003"),
    ("01022003", "01/02/2003"),
    ("01l02l2003", "01/02/2003"),
    ("0l/02/2003", "01/02/2003"),
    ("31/12/1999", "31/12/1999"),
    ("12 0CT 2003", "12/10/2003"),
    ("12 Oct 2003", "12/10/2003"),
    ("12 5EP 2003", "12/09/2003"),
    ("3 MARCH 2004", "03/03/2004"),
    ("MARCH 3RD 2004", "03/03/2004"),
    ("15-O6-2004", "15/06/2004"),
    ("2O/11/2005", "20/11/2005"),
    ("7 Dec 2004", "07/12/2004"),
    ("29/02/2004", "29/02/2004"),
    ("not a date", None),
    ("USD", None),
    ("32/13/2003", None),
]

# (OCR text, the amount a person reads).
AMOUNTS = [
    ("12.50", "12.50"),
    ("1,234.56", "1234.56"),
    ("\u00a312.50", "12.50"),
    ("\u00a31,234.5O", "1234.50"),
    ("$1,234.56", "1234.56"),
    ("1O0.5O", "100.50"),
    ("l2.50", "12.50"),
    ("GBP 12.50", "12.50"),
    ("12.5O", "12.50"),
    ("  99.99 ", "99.99"),
    ("1,O28.75", "1028.75"),
    ("7.5O", "7.50"),
    ("USD", None),
    ("abc", None),
    ("1.2.3", None),
]

# (OCR text, the postcode a person reads).
POSTCODES = [
    ("SW1A 1AA", "SW1A 1AA"),
    ("SW1A1AA", "SW1A 1AA"),
    ("sw1a 1aa", "SW1A 1AA"),
    ("5W1A 1AA", "SW1A 1AA"),
    ("M1 IAA", "M1 1AA"),
    ("EC1A-1BB", "EC1A 1BB"),
    ("B33 8TH", "B33 8TH"),
    ("DN55 1PT", "DN55 1PT"),
    ("W1 1CA", None),  # C is never an inward letter
    ("GIR 0AA", "GIR 0AA"),
    ("SWIA 1AA", "SW1A 1AA"),
    ("12345", None),
    ("HELLO", None),
]

FMT = pelinor.cFormat()
SNAPSHOT = pelinor.cSettingsSnapshot.Take()


def pelinor_date(text):
    return FMT.FormatDate(text, 3)


def pelinor_date_snapshot(text):
    return FMT.FormatDate(text, 3, SNAPSHOT)


def pelinor_amount(text):
    # Code 10004: GB amounts with the recognised decimal point trusted.
    return FMT.FormatAmount(text, 10004)


def pelinor_postcode(text):
    return FMT.FormatPostCode(text, 5)


def dateparser_date(text):
    result = dateparser.parse(text, settings={"DATE_ORDER": "DMY"})
    return result.strftime("%d/%m/%Y") if result else None


CURRENCY = re.compile(r"^\s*(?:[\u00a3$\u20ac]|GBP|USD|EUR)?\s*")


def babel_amount(text):
    try:
        value = babel.numbers.parse_decimal(CURRENCY.sub("", text).strip(),
                                            locale="en_GB")
    except (babel.numbers.NumberFormatError, decimal.InvalidOperation):
        return None
    return "%.2f" % value


POSTCODE = re.compile(
    r"^(GIR ?0AA|[A-Z]{1,2}[0-9][0-9A-Z]? ?[0-9][ABD-HJLNP-UW-Z]{2})$")


def regex_postcode(text):
    t = text.strip().upper()
    if not POSTCODE.match(t):
        return None
    t = t.replace(" ", "")
    return t[:-3] + " " + t[-3:]


def floor(text):
    return text.strip()


def score(parse, corpus):
    right = wrong = rejected = 0
    for text, expected in corpus:
        got = parse(text)
        if got == expected:
            right += 1
        elif got is None:
            rejected += 1
        else:
            wrong += 1
    return right, wrong, rejected


def per_value_us(parse, corpus, budget=0.02):
    """(mean, median) microseconds per value: each value's best time."""
    times = []
    for text, _ in corpus:
        parse(text)  # warm caches and lazy loading
        best = float("inf")
        deadline = time.perf_counter() + budget
        runs = 0
        while runs < 3 or time.perf_counter() < deadline:
            start = time.perf_counter()
            for _ in range(20):
                parse(text)
            best = min(best, (time.perf_counter() - start) / 20)
            runs += 1
            if best > budget:
                break
        times.append(best * 1e6)
    return statistics.mean(times), statistics.median(times)


def main():
    rows = [
        ("dates", "pelinor cFormat.FormatDate", pelinor_date, DATES),
        ("dates", "pelinor, settings snapshot", pelinor_date_snapshot, DATES),
        ("dates", "dateparser.parse (DMY)", dateparser_date, DATES),
        ("amounts", "pelinor cFormat.FormatAmount", pelinor_amount, AMOUNTS),
        ("amounts", "babel parse_decimal (en_GB)", babel_amount, AMOUNTS),
        ("postcodes", "pelinor cFormat.FormatPostCode", pelinor_postcode,
         POSTCODES),
        ("postcodes", "regular expression", regex_postcode, POSTCODES),
    ]
    print("| Values | Parser | Right | Wrong value | Rejected | mean us | median us |")
    print("|---|---|---|---|---|---|---|")
    for kind, name, parse, corpus in rows:
        right, wrong, rejected = score(parse, corpus)
        mean, median = per_value_us(parse, corpus)
        print("| %s (%d) | %s | %d | %d | %d | %.2f | %.2f |" % (
            kind, len(corpus), name, right, wrong, rejected, mean, median))
    print("| floor | Python call of str.strip | | | | %.2f | %.2f |" %
          per_value_us(floor, DATES))
    if "-v" in sys.argv:
        for kind, name, parse, corpus in rows:
            for text, expected in corpus:
                got = parse(text)
                if got != expected:
                    print("%-10s %-32s %-18r -> %r (reads %r)" % (
                        kind, name, text, got, expected))


if __name__ == "__main__":
    warnings.simplefilter("ignore")
    import babel.numbers
    import dateparser
    main()
