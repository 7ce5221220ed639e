#!/usr/bin/python3
"""Writes the workbooks under tests/data/xlsx/ with tools other than Orvane.

  openpyxl_tickets.xlsx     openpyxl: inline strings, booleans (t="b"), dates
                            and a date-time with date styles, a sparse row, a
                            second sheet, deflated members.
  libreoffice_tickets.xlsx  LibreOffice Calc, converted from
                            libreoffice_tickets.fods (kept beside it): shared
                            strings, booleans as 1/0 numbers with a boolean
                            style, dates, a sparse row, deflated members.
  styled_gaps_tickets.xlsx  openpyxl: a styled but empty row, an empty row
                            that only sets its height, rows the sheet leaves
                            out, and date serials of 0 and below, so import
                            issues must carry the sheet's own row numbers.
  prefixed_parts.xlsx       what neither of those writes: prefixed element
                            names ("x:c"), an absolute sheet target that is not
                            sheet1.xml, rich-text runs, formula text and error
                            cells. The parts are written here and deflated by
                            Python's zipfile.

Run with /usr/bin/python3 (it has openpyxl); needs soffice on PATH for the
LibreOffice workbook. Name workbooks as arguments to write only those.
The tests check the cells listed in this file, so change both together.
"""
import datetime
import os
import shutil
import subprocess
import tempfile
import zipfile

import openpyxl

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "xlsx")
FIXED = datetime.datetime(2026, 1, 1, 0, 0, 0)


def openpyxl_workbook(path):
    wb = openpyxl.Workbook()
    ws = wb.active
    ws.title = "Tickets"
    ws.append(["Title", "Details", "Status", "Priority", "Blocked", "Created", "Due date", "Tags", "Points"])
    ws.append(["Fix login", "Crash on submit", "Backlog", "High", True,
               datetime.date(2025, 10, 1), datetime.datetime(2025, 10, 1, 12, 0, 0), "ui|auth", 3])
    # Sparse: only B and D.
    ws["B3"] = "only details"
    ws["D3"] = "Low"
    ws.append(["Ünïcode ✓ title", "line one\nline two", "Done", "Urgent", False,
               datetime.datetime(2025, 9, 30, 8, 15, 30), None, "", 2.5])
    for row in ws.iter_rows(min_row=2):
        for cell in row:
            if isinstance(cell.value, datetime.datetime):
                cell.number_format = "yyyy-mm-dd hh:mm:ss"
            elif isinstance(cell.value, datetime.date):
                cell.number_format = "yyyy-mm-dd"
    other = wb.create_sheet("Other")
    other["A1"] = "not the first sheet"
    wb.properties.created = FIXED
    wb.properties.modified = FIXED
    wb.save(path)


FODS = """<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
 xmlns:number="urn:oasis:names:tc:opendocument:xmlns:datastyle:1.0"
 office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.spreadsheet">
 <office:automatic-styles>
  <number:date-style style:name="D1"><number:year number:style="long"/><number:text>-</number:text><number:month number:style="long"/><number:text>-</number:text><number:day number:style="long"/></number:date-style>
  <number:date-style style:name="D2"><number:year number:style="long"/><number:text>-</number:text><number:month number:style="long"/><number:text>-</number:text><number:day number:style="long"/><number:text> </number:text><number:hours number:style="long"/><number:text>:</number:text><number:minutes number:style="long"/></number:date-style>
  <style:style style:name="cd" style:family="table-cell" style:data-style-name="D1"/>
  <style:style style:name="cdt" style:family="table-cell" style:data-style-name="D2"/>
 </office:automatic-styles>
 <office:body><office:spreadsheet>
  <table:table table:name="Import">
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>summary</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>status</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>blocked</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>started</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>done_at</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>estimate</text:p></table:table-cell>
   </table:table-row>
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>Write docs</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>In progress</text:p></table:table-cell>
    <table:table-cell office:value-type="boolean" office:boolean-value="true"/>
    <table:table-cell table:style-name="cd" office:value-type="date" office:date-value="2025-10-01"/>
    <table:table-cell table:style-name="cdt" office:value-type="date" office:date-value="2025-10-01T12:00:00"/>
    <table:table-cell office:value-type="float" office:value="1000000"/>
   </table:table-row>
   <table:table-row>
    <table:table-cell/>
    <table:table-cell office:value-type="string"><text:p>sparse</text:p></table:table-cell>
    <table:table-cell/>
    <table:table-cell office:value-type="float" office:value="-0.25"/>
   </table:table-row>
   <table:table-row>
    <table:table-cell office:value-type="string"><text:p>Write docs</text:p></table:table-cell>
    <table:table-cell office:value-type="string"><text:p>Done</text:p></table:table-cell>
    <table:table-cell office:value-type="boolean" office:boolean-value="false"/>
   </table:table-row>
  </table:table>
  <table:table table:name="Second">
   <table:table-row><table:table-cell office:value-type="string"><text:p>ignored</text:p></table:table-cell></table:table-row>
  </table:table>
 </office:spreadsheet></office:body>
</office:document>
"""


def libreoffice_workbook(out_dir):
    fods = os.path.join(out_dir, "libreoffice_tickets.fods")
    with open(fods, "w", encoding="utf-8") as f:
        f.write(FODS)
    with tempfile.TemporaryDirectory() as work:
        profile = "file://" + os.path.join(work, "lo-profile")
        subprocess.run(["soffice", "-env:UserInstallation=" + profile, "--headless", "--convert-to", "xlsx",
                        "--outdir", work, fods], check=True, stdout=subprocess.DEVNULL)
        shutil.copy(os.path.join(work, "libreoffice_tickets.xlsx"), os.path.join(out_dir, "libreoffice_tickets.xlsx"))


INLINE_PARTS = {
    "[Content_Types].xml": """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="xml" ContentType="application/xml"/><Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/><Override PartName="/xl/worksheets/data.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/></Types>""",
    "_rels/.rels": """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/></Relationships>""",
    "xl/workbook.xml": """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<x:workbook xmlns:x="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><x:sheets><x:sheet name="Data" sheetId="1" r:id="rId7"/></x:sheets></x:workbook>""",
    "xl/_rels/workbook.xml.rels": """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId7" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet" Target="/xl/worksheets/data.xml"/></Relationships>""",
    "xl/worksheets/data.xml": """<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<x:worksheet xmlns:x="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><x:sheetData>
<x:row r="1"><x:c r="A1" t="inlineStr"><x:is><x:t>title</x:t></x:is></x:c><x:c r="B1" t="inlineStr"><x:is><x:r><x:t>de</x:t></x:r><x:r><x:t xml:space="preserve">scription </x:t></x:r></x:is></x:c><x:c r="C1" t="inlineStr"><x:is><x:t>due</x:t></x:is></x:c></x:row>
<x:row r="2"><x:c r="A2" t="inlineStr"><x:is><x:t>Tom &amp; Jerry</x:t></x:is></x:c><x:c r="B2" t="str"><x:f>"x"&amp;"y"</x:f><x:v>xy</x:v></x:c><x:c r="C2"><x:v>45931</x:v></x:c></x:row>
<x:row r="4"><x:c r="C4" t="e"><x:v>#N/A</x:v></x:c></x:row>
</x:sheetData></x:worksheet>""",
}


def inline_workbook(path):
    with zipfile.ZipFile(path, "w", compression=zipfile.ZIP_DEFLATED) as z:
        for name, text in INLINE_PARTS.items():
            info = zipfile.ZipInfo(name, date_time=(2026, 1, 1, 0, 0, 0))
            info.compress_type = zipfile.ZIP_DEFLATED
            z.writestr(info, text)


def styled_gaps_workbook(path):
    wb = openpyxl.Workbook()
    ws = wb.active
    ws.title = "Tickets"
    ws.append(["title", "status", "created", "due", "priority", "points"])       # 1
    ws.append(["First", "Backlog", datetime.date(2026, 1, 5), None, "High", 1])  # 2
    # 3: formatted but empty, as a spreadsheet writes a styled range.
    for column in "ABCDEF":
        ws[column + "3"].fill = openpyxl.styles.PatternFill("solid", fgColor="FFFF00")
        ws[column + "3"].number_format = "yyyy-mm-dd"
    ws["A4"] = "Bad date"                                                        # 4
    ws["C4"] = "someday"
    # 5 and 6 are not in the file at all.
    ws["A7"] = None                                                              # 7: empty title
    ws["B7"] = "Backlog"
    ws["A8"] = "Old one"                                                         # 8: serials 0 and -1
    ws["C8"] = -1
    ws["D8"] = 0
    ws["C8"].number_format = ws["D8"].number_format = "yyyy-mm-dd"
    ws.row_dimensions[9].height = 30                                             # 9: a height, no cells
    ws["A10"] = "Odd priority"                                                   # 10
    ws["E10"] = "soonish"
    wb.properties.created = FIXED
    wb.properties.modified = FIXED
    wb.save(path)


WRITERS = {
    "openpyxl_tickets.xlsx": lambda: openpyxl_workbook(os.path.join(OUT, "openpyxl_tickets.xlsx")),
    "libreoffice_tickets.xlsx": lambda: libreoffice_workbook(OUT),
    "styled_gaps_tickets.xlsx": lambda: styled_gaps_workbook(os.path.join(OUT, "styled_gaps_tickets.xlsx")),
    "prefixed_parts.xlsx": lambda: inline_workbook(os.path.join(OUT, "prefixed_parts.xlsx")),
}


def main(names):
    os.makedirs(OUT, exist_ok=True)
    for name in names or WRITERS:
        WRITERS[name]()


def fuzz_seeds():
    """Seeds for fuzz/ZipReaderFuzz.cpp and fuzz/XlsxReaderFuzz.cpp: the
    workbooks above as they are, plus (for the XLSX target) their XML parts
    joined by NUL bytes: sheet, shared strings, workbook, relationships."""
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "fuzz", "corpus")
    zip_dir, xlsx_dir = os.path.join(root, "ZipReader"), os.path.join(root, "XlsxReader")
    os.makedirs(zip_dir, exist_ok=True)
    os.makedirs(xlsx_dir, exist_ok=True)
    for name in ("openpyxl_tickets.xlsx", "libreoffice_tickets.xlsx", "prefixed_parts.xlsx"):
        with open(os.path.join(OUT, name), "rb") as f:
            data = f.read()
        for d in (zip_dir, xlsx_dir):
            with open(os.path.join(d, name), "wb") as f:
                f.write(data)
        with zipfile.ZipFile(os.path.join(OUT, name)) as z:
            names = z.namelist()
            sheet = next(n for n in names if n.startswith("xl/worksheets/") and n.endswith(".xml"))
            parts = [z.read(sheet), z.read("xl/sharedStrings.xml") if "xl/sharedStrings.xml" in names else b"",
                     z.read("xl/workbook.xml"), z.read("xl/_rels/workbook.xml.rels")]
        with open(os.path.join(xlsx_dir, name.replace(".xlsx", ".parts")), "wb") as f:
            f.write(b"\0".join(parts))
    # An empty archive and one with a trailing comment.
    with open(os.path.join(zip_dir, "empty.zip"), "wb") as f:
        f.write(b"PK\x05\x06" + b"\0" * 18)
    with zipfile.ZipFile(os.path.join(zip_dir, "comment.zip"), "w", compression=zipfile.ZIP_STORED) as z:
        z.comment = b"a trailing comment"
        z.writestr(zipfile.ZipInfo("a.txt", date_time=(2026, 1, 1, 0, 0, 0)), "stored text")


if __name__ == "__main__":
    import sys
    main(sys.argv[1:])
    if len(sys.argv) == 1:
        fuzz_seeds()
