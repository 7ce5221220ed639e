#!/usr/bin/python3
"""Peak memory and wall time of `orvane-cli import` on hostile and large files.

Writes each kind of file into a temporary folder, imports it with
`orvane-cli import PROJECT FILE --dry-run` (and, for the legitimate files, a
real import) into a fresh store, and prints one table row per file: its size,
what the command answered (imported, or the first line of its refusal), the
peak resident set size and the wall time. The goal these figures are held
against: any file up to 50 MB is imported or refused within 1 GB.

Usage: tools/measure_import_memory.py [--cli build/src/cli/orvane-cli] [--only NAME]...
Peak RSS comes from /usr/bin/time -v when present, else from
getrusage(RUSAGE_CHILDREN) of a child that runs the command alone.
"""
import argparse
import io
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
MB = 1 << 20

WORKBOOK = (b'<?xml version="1.0" encoding="UTF-8"?><workbook xmlns="http://schemas.openxmlformats.org/'
            b'spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">'
            b'<sheets><sheet name="S" sheetId="1" r:id="rId1"/></sheets></workbook>')
RELS = (b'<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        b'<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet"'
        b' Target="worksheets/sheet1.xml"/><Relationship Id="rId2" Type="http://schemas.openxmlformats.org/'
        b'officeDocument/2006/relationships/sharedStrings" Target="sharedStrings.xml"/></Relationships>')
HEADER_ROW = b'<row r="1"><c r="A1" t="inlineStr"><is><t>title</t></is></c></row>'


def sheet(rows):
    return b"<worksheet><sheetData>" + rows + b"</sheetData></worksheet>"


def write_xlsx(path, sheet_xml, shared=None):
    with zipfile.ZipFile(path, "w", compression=zipfile.ZIP_DEFLATED, compresslevel=9) as z:
        z.writestr("xl/workbook.xml", WORKBOOK)
        z.writestr("xl/_rels/workbook.xml.rels", RELS)
        z.writestr("xl/worksheets/sheet1.xml", sheet_xml)
        if shared is not None:
            z.writestr("xl/sharedStrings.xml", shared)


def deep_nesting(path, levels):
    write_xlsx(path, sheet(HEADER_ROW + b"<row>" + b"<a>" * levels + b"</a>" * levels + b"</row>"))


def empty_shared_strings(path, count):
    write_xlsx(path, sheet(HEADER_ROW), b"<sst>" + b"<si/>" * count + b"</sst>")


def shared_string_text(path, count, length):
    item = b"<si><t>" + b"s" * length + b"</t></si>"
    write_xlsx(path, sheet(HEADER_ROW + b'<row r="2"><c r="A2" t="s"><v>0</v></c></row>'),
               b"<sst>" + item * count + b"</sst>")


def one_long_string_everywhere(path, cells):
    # One shared string of 1 MB referenced by every cell of a column.
    rows = b"".join(b'<row r="%d"><c r="A%d" t="s"><v>0</v></c></row>' % (r, r) for r in range(2, cells + 2))
    write_xlsx(path, sheet(HEADER_ROW + rows), b"<sst><si><t>" + b"x" * MB + b"</t></si></sst>")


def styled_blank_cells(path, rows, width):
    row = b"".join(b'<c s="1"/>' for _ in range(width))
    write_xlsx(path, sheet(HEADER_ROW + b"".join(b"<row>" + row + b"</row>" for _ in range(rows))))


def many_sheet_rows(path, rows):
    body = b"".join(b'<row r="%d"><c r="A%d" t="inlineStr"><is><t>Ticket %d</t></is></c></row>' % (r, r, r)
                    for r in range(2, rows + 2))
    write_xlsx(path, sheet(HEADER_ROW + body))


def tiny_csv_rows(path, size):
    with open(path, "wb") as f:
        f.write(b"title\n")
        f.write(b"a\n" * ((size - 6) // 2))


def wide_csv_row(path, size):
    with open(path, "wb") as f:
        f.write(b"title\n")
        f.write(b"," * (size - 6))


def wide_csv_header(path, size):
    with open(path, "wb") as f:
        f.write(b"title" + b"," * (size - 7) + b"\n")


def legitimate_csv(path, size):
    header = b"title,description,column,priority,epic,tags,created_at,started_at,completed_at,archived_at," \
             b"due_date,assignee,blocked\n"
    out = io.BytesIO()
    out.write(header)
    i = 0
    words = b"make the checkout faster and keep the receipts readable on small screens " * 9
    while out.tell() < size:
        column = (b"Backlog", b"In Progress", b"Done")[i % 3]
        started = b"2026-02-02T09:00:00Z" if i % 3 else b""
        completed = b"2026-02-09T17:00:00Z" if i % 3 == 2 else b""
        out.write(b"Ticket %d: %s,%s,%s,High,Epic %d,web|api,2026-01-05,%s,%s,,2026-03-01,Person %d,\n" %
                  (i, words[:40], words, column, i % 20, started, completed, i % 12))
        i += 1
    with open(path, "wb") as f:
        f.write(out.getvalue()[:size])


def legitimate_rows(path, rows):
    header = b"title,description,column,priority,epic,tags,created_at,assignee\n"
    with open(path, "wb") as f:
        f.write(header)
        for i in range(rows):
            f.write(b"Ticket %d,Details of ticket %d,Backlog,Medium,Epic %d,web,2026-01-05,Person %d\n" %
                    (i, i, i % 20, i % 12))


CASES = [
    # name, file name, writer, also import for real
    ("deep nesting (35M levels)", "deep.xlsx", lambda p: deep_nesting(p, 35_000_000), False),
    ("deep nesting (60M levels, past the unpack cap)", "deeper.xlsx", lambda p: deep_nesting(p, 60_000_000), False),
    ("50M empty shared strings", "empty_shared.xlsx", lambda p: empty_shared_strings(p, 50_000_000), False),
    ("shared strings, 200 MB of text", "shared_text.xlsx", lambda p: shared_string_text(p, 2_000_000, 100), False),
    ("shared strings, 3.9M x 20 B (within bounds)", "shared_ok.xlsx",
     lambda p: shared_string_text(p, 3_900_000, 20), False),
    ("1 MB shared string in 200 cells", "long_shared.xlsx", lambda p: one_long_string_everywhere(p, 200), False),
    ("styled blank cells, 20M", "styled_blank.xlsx", lambda p: styled_blank_cells(p, 2_000, 10_000), False),
    ("workbook of 1M tiny rows", "many_rows.xlsx", lambda p: many_sheet_rows(p, 1_000_000), False),
    ("workbook of 100k tiny rows", "rows_100k.xlsx", lambda p: many_sheet_rows(p, 100_000), True),
    ("CSV 20 MB of tiny rows", "tiny_20.csv", lambda p: tiny_csv_rows(p, 20 * MB), False),
    ("CSV 50 MB of tiny rows", "tiny_50.csv", lambda p: tiny_csv_rows(p, 50 * MB), False),
    ("CSV 50 MB, one row of delimiters", "wide_row.csv", lambda p: wide_csv_row(p, 50 * MB), False),
    ("CSV 50 MB, header of delimiters", "wide_header.csv", lambda p: wide_csv_header(p, 50 * MB), False),
    ("CSV 50 MB of full ticket rows (about 70k)", "legit_50.csv", lambda p: legitimate_csv(p, 50 * MB), True),
    ("CSV 100k ticket rows (7 MB)", "legit_100k.csv", lambda p: legitimate_rows(p, 100_000), True),
]


def measure(command):
    """(exit code, output, peak RSS in bytes, seconds)."""
    start = time.monotonic()
    if shutil.which("/usr/bin/time"):
        result = subprocess.run(["/usr/bin/time", "-v"] + command, capture_output=True, text=True)
        seconds = time.monotonic() - start
        peak = 0
        lines = result.stderr.splitlines()
        for line in lines:
            if "Maximum resident set size" in line:
                peak = int(line.split(":")[1]) * 1024
        stderr = "\n".join(l for l in lines if not l.startswith("\t"))
        stderr = stderr.split("\tCommand being timed")[0]
        return result.returncode, (result.stdout + stderr).strip(), peak, seconds
    # A child of a child, so RUSAGE_CHILDREN holds this command alone.
    code = ("import resource,subprocess,sys;r=subprocess.run(sys.argv[1:],capture_output=True,text=True);"
            "sys.stdout.write(r.stdout+r.stderr);"
            "sys.stderr.write(str(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss));sys.exit(r.returncode)")
    result = subprocess.run([sys.executable, "-c", code] + command, capture_output=True, text=True)
    seconds = time.monotonic() - start
    return result.returncode, result.stdout.strip(), int(result.stderr or 0) * 1024, seconds


def answer(output):
    lines = [l for l in output.splitlines() if not l.startswith("Row ")]
    text = next((l for l in lines if l.startswith(("Would import", "Imported"))), lines[0] if lines else "")
    return text if len(text) <= 90 else text[:87] + "..."


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--cli", default=os.path.join(ROOT, "build", "src", "cli", "orvane-cli"))
    parser.add_argument("--only", action="append", help="file names to run (default: all)")
    args = parser.parse_args()
    cli = os.path.abspath(args.cli)
    if not os.path.exists(cli):
        sys.exit("orvane-cli not found at " + cli + "; build it or pass --cli")

    print("| file | size | mode | answer | peak RSS | wall time |")
    print("|---|---|---|---|---|---|")
    with tempfile.TemporaryDirectory() as folder:
        for name, file_name, write, real in CASES:
            if args.only and file_name not in args.only:
                continue
            path = os.path.join(folder, file_name)
            write(path)
            size = os.path.getsize(path)
            for mode in ("dry run", "import") if real else ("dry run",):
                store = os.path.join(folder, "store.sqlite")
                for leftover in (store, store + "-wal", store + "-shm"):
                    if os.path.exists(leftover):
                        os.remove(leftover)
                subprocess.run([cli, "--store", store, "project", "create", "Shop"], check=True,
                               capture_output=True)
                command = [cli, "--store", store, "import", "Shop", path] + (["--dry-run"] if mode == "dry run" else [])
                code, output, peak, seconds = measure(command)
                print("| %s | %s | %s | %s%s | %.0f MB | %.1f s |" %
                      (name, "%.2f MB" % (size / MB) if size >= 100 * 1024 else "%.0f KB" % (size / 1024), mode,
                       "" if code == 0 else "refused: ", answer(output), peak / MB, seconds), flush=True)
            os.remove(path)


if __name__ == "__main__":
    main()
