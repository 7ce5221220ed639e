#!/usr/bin/env python3
"""Kills orvane-cli at random moments while it writes a backup or an export,
then checks what a killed writer leaves behind and that the next write to
the same place clears it.

    tools/kill_during_writes.py path/to/orvane-cli [--kills 250] [--tickets 3000]

After every kill the target is either the old file whole or the new one
whole. Hidden temporary files may be left by kills (the writer had no chance
to remove them); after one more complete write to the same target none of
them may remain. Prints a line per kind of file and exits 1 on a failure.
"""
import argparse
import os
import random
import signal
import subprocess
import sys
import tempfile
import time


# A fixed clock: every complete backup is the same bytes.
NOW = ["--now", "2026-03-05T10:00:00Z"]


def run(cli, store, *args):
    return subprocess.run([cli, "--store", store, *NOW, *args], capture_output=True, text=True, check=True)


def leftovers(folder, name):
    return [entry for entry in os.listdir(folder) if entry.startswith("." + name + ".orvane-tmp-")]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("cli")
    parser.add_argument("--kills", type=int, default=250)
    parser.add_argument("--tickets", type=int, default=3000)
    options = parser.parse_args()
    rng = random.Random(7)
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        store = os.path.join(folder, "store.sqlite")
        run(options.cli, store, "project", "create", "Shop")
        csv = os.path.join(folder, "tickets.csv")
        with open(csv, "w") as out:
            out.write("title,description\n")
            for n in range(options.tickets):
                out.write(f"Ticket {n},{'Some words about the work. ' * 8}\n")
        run(options.cli, store, "import", "Shop", csv)

        for kind, args in (("backup", ["backup"]), ("export", ["export", "Shop"])):
            name = "target.json" if kind == "backup" else "target.csv"
            target = os.path.join(folder, name)
            run(options.cli, store, *args, target)
            with open(target, "rb") as whole:
                complete = whole.read()
            # How long one write takes, to spread the kills over it.
            start = time.monotonic()
            run(options.cli, store, *args, target)
            duration = time.monotonic() - start
            torn = 0
            previous = set()
            left = 0
            for _ in range(options.kills):
                process = subprocess.Popen([options.cli, "--store", store, *NOW, *args, target],
                                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                if rng.random() < 0.5:
                    # At a random moment; the file is written at the very end of a run.
                    time.sleep(rng.uniform(0.6 * duration, 1.1 * duration))
                else:
                    # As soon as its temporary file shows, to be sure to catch some writes midway.
                    while process.poll() is None and not set(leftovers(folder, name)) - previous:
                        pass
                process.send_signal(signal.SIGKILL)
                process.wait()
                # Each write clears what earlier kills left, so count the new ones.
                now = set(leftovers(folder, name))
                left += len(now - previous)
                previous = now
                with open(target, "rb") as after:
                    if after.read() != complete:
                        torn += 1
            run(options.cli, store, *args, target)
            remaining = leftovers(folder, name)
            print(f"{kind}: {options.kills} kills, {torn} torn targets, {left} temporary files left by kills, "
                  f"{len(remaining)} after the next write")
            failed |= torn > 0 or bool(remaining)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
