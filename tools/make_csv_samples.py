#!/usr/bin/python3
"""Writes the ticket files under tests/data/csv/ with Python's csv module, a
writer independent of Orvane's own codec.

All three hold the same three tickets (ROWS) and differ only in layout:

  comma_crlf.csv       comma, "\\r\\n" line ends (the csv module's default),
                       canonical headers, no byte order mark.
  semicolon_bom.csv    semicolon, "\\r\\n", a UTF-8 byte order mark, headers
                       in another case ("Title", "Description", ...).
  tab_aliases.csv      tab, "\\n" line ends, alias headers ("Summary",
                       "Assigned To", "Done-At", ...).

Plus issues.csv (comma, "\\n"): one row per row-level problem, in the order
the tests expect them.

Quoted fields hold delimiters, doubled quotes and line breaks ("\\r\\n" in
the first ticket's description, "\\n" in the third's). The tests compare the
parsed rows with ROWS, so change both together.
"""
import csv
import os

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "csv")

HEADERS = ["title", "description", "column", "priority", "epic", "tags", "created_at", "started_at",
           "completed_at", "archived_at", "due_date", "assignee", "blocked"]
CAPITALISED = ["Title", "Description", "Column", "Priority", "Epic", "Tags", "Created_At", "Started_At",
               "Completed_At", "Archived_At", "Due_Date", "Assignee", "Blocked"]
ALIASES = ["Summary", "Details", "Status", "priority", "EPIC", "Labels", "Created", "Started", "Done-At",
           "Archived", "Due", "Assigned To", "Blocked"]

ROWS = [
    ["Login page", "Users sign in with\r\nemail and password", "Done", "High", "Accounts", "auth|ui",
     "2026-01-05T09:00:00Z", "2026-01-06T10:00:00Z", "2026-01-09T16:30:00Z", "", "2026-01-10", "Ana Souza", ""],
    ['Fix "Save" button, again', "Crashes; sometimes\tright away", "In Progress", "urgent", "", "",
     "2026-01-07", "2026-01-08T08:15:00+01:00", "", "", "", "Jörg Müller", "Yes"],
    ["Café menu ☕", "Line one\nLine two", "Backlog", "Low", "Accounts", " menu | ui ",
     "2026-01-02T00:00:00Z", "", "", "", "", "", ""],
]

ISSUE_ROWS = [
    # header: one unknown column, one duplicate of title
    ["title", "column", "colour", "Summary", "due_date", "priority", "blocked"],
    ["Too many", "Backlog", "", "", "", "", "", "extra"],                 # row 2: extra fields
    ["", "Backlog", "", "x", "", "", ""],                                 # row 3: empty title
    ["Bad date", "Backlog", "", "", "05/10/2026", "", ""],                # row 4: invalid date
    ["Odd priority", "Backlog", "", "", "", "Someday", ""],               # row 5: priority warning
    ["Not blocked", "Backlog", "", "", "", "", "No"],                     # row 6: blocked warning
    ["Short"],                                                             # row 7: fewer fields, fine
]


def write(name, header, rows, delimiter, lineterminator, encoding="utf-8"):
    with open(os.path.join(OUT, name), "w", newline="", encoding=encoding) as f:
        writer = csv.writer(f, delimiter=delimiter, lineterminator=lineterminator)
        writer.writerow(header)
        writer.writerows(rows)


def main():
    os.makedirs(OUT, exist_ok=True)
    write("comma_crlf.csv", HEADERS, ROWS, ",", "\r\n")
    write("semicolon_bom.csv", CAPITALISED, ROWS, ";", "\r\n", encoding="utf-8-sig")
    write("tab_aliases.csv", ALIASES, ROWS, "\t", "\n")
    write("issues.csv", ISSUE_ROWS[0], ISSUE_ROWS[1:], ",", "\n")


if __name__ == "__main__":
    main()
