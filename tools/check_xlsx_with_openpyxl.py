#!/usr/bin/python3
"""Opens a workbook with openpyxl and compares its cells with what Orvane read.

  check_xlsx_with_openpyxl.py WORKBOOK.xlsx EXPECTED.json

EXPECTED.json: {"sheets": [sheet names in order],
                "rows": [[cell text, ...], ...]}   (the first sheet)
Cells are compared as text: dates as "YYYY-MM-DD" at midnight and
"YYYY-MM-DDTHH:MM:SSZ" otherwise, whole numbers without a fraction, trailing
empty cells and empty rows left out. The first sheet's header row must be bold
and frozen. Exit 0 when all agree, 1 with the differences on stderr, 77 when
openpyxl is not installed (the caller skips).
"""
import datetime
import json
import sys

try:
    import openpyxl
except ImportError:
    sys.exit(77)


def text(value):
    if value is None:
        return ""
    if isinstance(value, bool):
        return "TRUE" if value else "FALSE"
    if isinstance(value, datetime.datetime):
        if value.time() == datetime.time(0, 0):
            return value.strftime("%Y-%m-%d")
        return value.strftime("%Y-%m-%dT%H:%M:%SZ")
    if isinstance(value, datetime.date):
        return value.strftime("%Y-%m-%d")
    if isinstance(value, float) and value.is_integer() and abs(value) < 1e15:
        return str(int(value))
    return str(value)


def main():
    workbook_path, expected_path = sys.argv[1], sys.argv[2]
    with open(expected_path, encoding="utf-8") as f:
        expected = json.load(f)
    wb = openpyxl.load_workbook(workbook_path)
    problems = []
    if wb.sheetnames != expected["sheets"]:
        problems.append("sheets: %r != %r" % (wb.sheetnames, expected["sheets"]))
    ws = wb.worksheets[0]
    rows = []
    for row in ws.iter_rows(values_only=True):
        cells = [text(v) for v in row]
        while cells and cells[-1] == "":
            cells.pop()
        if cells:
            rows.append(cells)
    if rows != expected["rows"]:
        for i in range(max(len(rows), len(expected["rows"]))):
            got = rows[i] if i < len(rows) else None
            want = expected["rows"][i] if i < len(expected["rows"]) else None
            if got != want:
                problems.append("row %d: openpyxl %r, Orvane %r" % (i + 1, got, want))
    if ws.freeze_panes != "A2":
        problems.append("freeze_panes %r" % ws.freeze_panes)
    if ws.max_row >= 1 and not ws.cell(row=1, column=1).font.b:
        problems.append("header not bold")
    for p in problems:
        print(p, file=sys.stderr)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
