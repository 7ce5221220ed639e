#!/usr/bin/env python3
"""Makes the seed corpus of the Restore fuzz target: a real backup written
by orvane-cli (the demo project with two saved forecasts), cut down to a
few tickets so that each fuzz run stays fast, plus the hand-written files of
every format version from tests/data/backup.

    tools/make_restore_corpus.py BUILD_DIR
"""
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile

root = pathlib.Path(__file__).resolve().parent.parent
cli = pathlib.Path(sys.argv[1]) / "src" / "cli" / "orvane-cli"
corpus = root / "fuzz" / "corpus" / "Restore"
corpus.mkdir(parents=True, exist_ok=True)

with tempfile.TemporaryDirectory() as folder:
    store = pathlib.Path(folder) / "store.sqlite"
    backup = pathlib.Path(folder) / "backup.json"

    def run(*args):
        subprocess.run([str(cli), "--store", str(store), "--now", "2026-03-05T10:00:00Z", *args],
                       check=True, stdout=subprocess.DEVNULL)

    run("demo")
    run("forecast", "when", "Demo: Web Shop", "--log", "--note", "first look")
    run("forecast", "by-date", "Demo: Web Shop", "2026-05-01", "--log")
    run("backup", str(backup))
    document = json.loads(backup.read_text())

project = document["projects"][0]
# The first four tickets and both ends of the first three links; links to
# tickets left out stay in, as a restore must skip them.
links = document["links"][0]["links"]
kept_ids = {ticket["id"] for ticket in project["tickets"][:4]}
kept_ids |= {link["sourceID"] for link in links[:3]} | {link["targetID"] for link in links[:3]}
project["tickets"] = [ticket for ticket in project["tickets"] if ticket["id"] in kept_ids]
project["epics"] = project["epics"][:3]
for entry in document["links"]:
    entry["links"] = [link for link in entry["links"]
                      if link["sourceID"] in kept_ids]
(corpus / "demo_small.json").write_text(json.dumps(document, indent=2, sort_keys=True) + "\n")

for source in sorted((root / "tests" / "data" / "backup").glob("*.json")):
    shutil.copy(source, corpus / source.name)
