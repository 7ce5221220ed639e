#!/usr/bin/env python3
"""Kill orvane-cli in the middle of its writing operations and check the store.

For each operation: a fresh folder, the operation's inputs prepared, the CLI
started and killed with SIGKILL after a random delay within the operation's
measured duration. Then the store must open with the CLI, pass SQLite's
integrity check, and show the operation whole or not at all.

  tools/stress_kill.py --cli build/src/cli/orvane-cli --kills 200 [--only first-create,demo,import,restore,backup,export]

Exit code 0 when every kill left a sound store, 1 otherwise. Standard library
only.
"""

import argparse
import collections
import json
import os
import random
import shutil
import signal
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

OPERATIONS = ["first-create", "demo", "import", "restore", "backup", "export"]
IMPORT_TICKETS = 2000
NOW = "2026-03-05T10:00:00Z"


class Case:
    """One folder with a store and what an operation needs."""

    def __init__(self, cli, root):
        self.cli = cli
        self.dir = tempfile.mkdtemp(prefix="case-", dir=root)
        self.store = os.path.join(self.dir, "store", "orvane.sqlite")
        os.makedirs(os.path.dirname(self.store))

    def args(self, *command):
        return [self.cli, "--store", self.store, "--now", NOW, *command]

    def run(self, *command):
        result = subprocess.run(self.args(*command), capture_output=True, text=True, timeout=300)
        if result.returncode != 0:
            raise RuntimeError(f"{' '.join(command)} failed ({result.returncode}): {result.stderr.strip()}")
        return result.stdout

    def projects(self):
        """The projects as the CLI lists them, or None when the store does not open."""
        result = subprocess.run(self.args("projects", "--json"), capture_output=True, text=True, timeout=300)
        if result.returncode != 0:
            return None, result.stderr.strip()
        return json.loads(result.stdout), ""

    def remove(self):
        shutil.rmtree(self.dir, ignore_errors=True)


def write_csv(path, count):
    with open(path, "w", newline="", encoding="utf-8") as out:
        out.write("title,description,column,priority,tags,created_at\n")
        for i in range(count):
            out.write(f"Ticket {i},Imported under stress,Backlog,medium,stress,2026-01-{1 + i % 28:02d}\n")


class Operation:
    """prepare(case) -> command; check(case, before) -> failure kind or None."""

    name = ""

    def prepare(self, case):
        raise NotImplementedError

    def baseline(self, case):
        """What a clean run leaves, measured once (see Stress.measure)."""
        return None

    def check(self, case, clean):
        return None


class FirstCreate(Operation):
    name = "first-create"

    def prepare(self, case):
        return ["projects"]

    def check(self, case, clean):
        # Reopened by the check itself: it must now be a whole, empty store.
        listed, _ = case.projects()
        return None if listed == [] else "partial"


class Demo(Operation):
    name = "demo"

    def prepare(self, case):
        case.run("projects")
        return ["demo"]

    def baseline(self, case):
        listed, _ = case.projects()
        return [p["tickets"] for p in listed]

    def check(self, case, clean):
        listed, _ = case.projects()
        counts = [p["tickets"] for p in listed]
        return None if counts in ([], clean) else "partial"


class Import(Operation):
    name = "import"

    def prepare(self, case):
        case.run("project", "create", "Stress", "--key", "ST")
        csv = os.path.join(case.dir, "tickets.csv")
        write_csv(csv, IMPORT_TICKETS)
        return ["import", "Stress", csv]

    def check(self, case, clean):
        listed, _ = case.projects()
        counts = [p["tickets"] for p in listed]
        return None if counts in ([0], [IMPORT_TICKETS]) else "partial"


class Restore(Operation):
    name = "restore"

    def __init__(self, root, cli):
        # One backup, made once by the CLI, restored into every fresh store.
        source = Case(cli, root)
        source.run("demo")
        source.run("demo")
        self.backup = os.path.join(root, "restore-source.json")
        source.run("backup", self.backup)
        self.projects = len(source.projects()[0])
        source.remove()

    def prepare(self, case):
        case.run("projects")
        return ["restore", self.backup]

    def check(self, case, clean):
        listed, _ = case.projects()
        return None if len(listed) in (0, self.projects) else "partial"


class Backup(Operation):
    name = "backup"

    def prepare(self, case):
        case.run("demo")
        case.run("demo")
        case.target_dir = os.path.join(case.dir, "target")
        os.makedirs(case.target_dir)
        case.target = os.path.join(case.target_dir, "backup.json")
        return ["backup", case.target]

    def check(self, case, clean):
        names = os.listdir(case.target_dir)
        if os.path.exists(case.target):
            try:
                with open(case.target, encoding="utf-8") as f:
                    document = json.load(f)
                if document.get("format") != "orvane-backup":
                    return "partial"
            except (ValueError, UnicodeDecodeError):
                return "partial"
        if [n for n in names if n != "backup.json"]:
            # A killed writer cannot remove its own temporary file; the next
            # backup to the same place must.
            case.run("backup", case.target)
            if [n for n in os.listdir(case.target_dir) if n != "backup.json"]:
                return "leftover"
        return None


class Export(Operation):
    """An export over an older file: the target is the old file or a whole
    new one, and the next export to the same place leaves no temporary file."""

    name = "export"
    old = "title\nThe file as it was\n"

    def prepare(self, case):
        case.run("demo")
        case.target_dir = os.path.join(case.dir, "target")
        os.makedirs(case.target_dir)
        case.target = os.path.join(case.target_dir, "tickets.csv")
        with open(case.target, "w", encoding="utf-8") as f:
            f.write(self.old)
        return ["export", "Demo: Web Shop", case.target]

    def baseline(self, case):
        with open(case.target, encoding="utf-8") as f:
            return f.read().count("\n")

    def check(self, case, clean):
        with open(case.target, encoding="utf-8") as f:
            text = f.read()
        if text != self.old and text.count("\n") != clean:
            return "partial"
        if [n for n in os.listdir(case.target_dir) if n != "tickets.csv"]:
            case.run("export", "Demo: Web Shop", case.target)
            if [n for n in os.listdir(case.target_dir) if n != "tickets.csv"]:
                return "leftover"
        return None


def integrity(path):
    try:
        db = sqlite3.connect(f"file:{path}?mode=ro", uri=True)
        try:
            return db.execute("PRAGMA integrity_check").fetchone()[0] == "ok"
        finally:
            db.close()
    except sqlite3.Error:
        return False


class Stress:
    def __init__(self, cli, root, rng):
        self.cli = cli
        self.root = root
        self.rng = rng

    def measure(self, operation, runs=3):
        """The median duration of a clean run, and what a clean run leaves."""
        durations = []
        clean = None
        for _ in range(runs):
            case = Case(self.cli, self.root)
            try:
                command = operation.prepare(case)
                started = time.monotonic()
                subprocess.run(case.args(*command), capture_output=True, check=True, timeout=300)
                durations.append(time.monotonic() - started)
                clean = operation.baseline(case)
            finally:
                case.remove()
        return statistics.median(durations), clean

    def kill_once(self, operation, duration, clean):
        """One kill; returns (killed, failure kind or None)."""
        case = Case(self.cli, self.root)
        try:
            command = operation.prepare(case)
            process = subprocess.Popen(case.args(*command), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(self.rng.uniform(0, duration * 1.1))
            killed = process.poll() is None
            if killed:
                process.send_signal(signal.SIGKILL)
            process.wait()
            listed, why = case.projects()
            if listed is None:
                return killed, "does-not-open", why
            if not integrity(case.store):
                return killed, "integrity", ""
            return killed, operation.check(case, clean), ""
        finally:
            case.remove()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--cli", required=True, help="the orvane-cli binary")
    parser.add_argument("--kills", type=int, default=200, help="kills per operation (default 200)")
    parser.add_argument("--only", default=",".join(OPERATIONS), help="comma-separated operations")
    parser.add_argument("--seed", type=int, default=None, help="seed of the random delays")
    parser.add_argument("--verbose", action="store_true", help="print every failure as it happens")
    options = parser.parse_args()

    names = [n.strip() for n in options.only.split(",") if n.strip()]
    unknown = [n for n in names if n not in OPERATIONS]
    if unknown:
        parser.error(f"unknown operation {', '.join(unknown)}; choose from {', '.join(OPERATIONS)}")
    cli = os.path.abspath(options.cli)
    if not os.access(cli, os.X_OK):
        parser.error(f"{options.cli} is not an executable")
    seed = options.seed if options.seed is not None else random.randrange(1 << 30)
    rng = random.Random(seed)

    root = tempfile.mkdtemp(prefix="orvane-stress-kill-")
    rows = []
    failed = False
    try:
        stress = Stress(cli, root, rng)
        for name in names:
            operation = {
                "first-create": FirstCreate,
                "demo": Demo,
                "import": Import,
                "restore": lambda: Restore(root, cli),
                "backup": Backup,
                "export": Export,
            }[name]()
            duration, clean = stress.measure(operation)
            kills = 0
            survived = 0
            failures = collections.Counter()
            for _ in range(options.kills):
                killed, failure, why = stress.kill_once(operation, duration, clean)
                kills += killed
                if failure:
                    failures[failure] += 1
                    if options.verbose:
                        print(f"{name}: {failure} {why}", file=sys.stderr)
                else:
                    survived += 1
            failed = failed or bool(failures)
            rows.append((name, f"{duration * 1000:.0f} ms", options.kills, kills, survived,
                         ", ".join(f"{k} {v}" for k, v in sorted(failures.items())) or "-"))
    finally:
        shutil.rmtree(root, ignore_errors=True)

    header = ("operation", "clean run", "runs", "killed", "survived", "failures by kind")
    widths = [max(len(str(row[i])) for row in rows + [header]) for i in range(len(header))]
    print(f"seed {seed}")
    for row in [header] + rows:
        print("  ".join(str(cell).ljust(width) for cell, width in zip(row, widths)).rstrip())
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
