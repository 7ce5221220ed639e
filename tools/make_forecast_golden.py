#!/usr/bin/python3
"""Writes tests/data/forecast/expected.json: what the forecast service must
answer for each board of tests/data/forecast/scenarios.json, which
tests/core/forecast/ForecastGoldenTest.cpp builds through the board service
and forecasts for real.

Everything here is worked out from the scenario text with NumPy and the
Python standard library alone: the board is replayed move by move, the
history, filler and seeds are derived from first principles, and every
simulation is the NumPy index matrix Generator(PCG64(SeedSequence(seed)))
.integers(0, n, (10000, 520)). Nothing reads the application's code or store,
so an agreement is evidence rather than an echo.

Days are UTC days throughout (the test runs the service with a UTC calendar).
The output is deterministic: rerunning leaves expected.json byte for byte
unchanged.

Run with the system interpreter that has NumPy:  /usr/bin/python3 tools/make_forecast_golden.py
"""

import calendar
import datetime
import hashlib
import json
import math
import os
import struct

import numpy as np

DATA_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "forecast")

ITERATIONS = 10000
MAX_PERIODS = 520
PERIOD_DAYS = 7
HISTORY_PERIODS = 12
LEVELS = (50, 70, 85, 95)
DEFAULT_RATE = 5.0
GOLDEN = 0x9E3779B97F4A7C15
MASK64 = (1 << 64) - 1
DONE = "Done"
COLUMNS = ("Backlog", "To Do", "In Progress", "Review", DONE)


# --- days and instants --------------------------------------------------------


def instant(text):
    """Seconds since 1970 of an ISO date-time in UTC ("2026-03-05T16:40:00Z")."""
    parsed = datetime.datetime.strptime(text, "%Y-%m-%dT%H:%M:%SZ")
    return calendar.timegm(parsed.timetuple())


def utc_day(text):
    return datetime.date.fromordinal(datetime.date(1970, 1, 1).toordinal() + instant(text) // 86400)


def day(text):
    return datetime.date.fromisoformat(text)


def forecast_date(as_of, periods):
    # Snapped to whole microseconds first (ties to even), then floored.
    snapped = round(periods * PERIOD_DAYS * 8.64e10) / 8.64e10
    return (as_of + datetime.timedelta(days=math.floor(snapped))).isoformat()


# --- the board ----------------------------------------------------------------


class Board:
    """The scenario's tickets after all their moves."""

    def __init__(self, scenario):
        self.tickets = {}
        for ticket in scenario["tickets"]:
            column, completed, last = "Backlog", None, instant(ticket["createdAt"])
            for to, at in ticket["moves"]:
                assert to in COLUMNS and to != column and instant(at) >= last, (ticket["title"], to, at)
                last = instant(at)
                column = to
                # Leaving Done undoes the completion; the last arrival counts.
                completed = at if to == DONE else None
            assert ticket["title"] not in self.tickets
            self.tickets[ticket["title"]] = {
                "column": column,
                "completed": completed,
                "archived": "archived" in ticket,
                "epic": ticket.get("epic"),
            }

    def is_open(self, title):
        t = self.tickets[title]
        return not t["archived"] and t["column"] != DONE

    def open_count(self, titles=None):
        return sum(1 for title in (self.tickets if titles is None else titles) if self.is_open(title))

    def open_of_epic(self, epic):
        return self.open_count([title for title, t in self.tickets.items() if t["epic"] == epic])

    def completion_days(self):
        return sorted(utc_day(t["completed"]) for t in self.tickets.values() if t["completed"] and not t["archived"])


# --- random streams -----------------------------------------------------------


def generator(seed):
    return np.random.Generator(np.random.PCG64(np.random.SeedSequence(seed)))


def derive_seed(samples, backlog):
    text = repr((backlog, tuple(samples)))
    return int.from_bytes(hashlib.sha256(text.encode("utf-8")).digest()[:4], "big")


def filler_seed(project_id, rate):
    leading = int.from_bytes(bytes.fromhex(project_id.replace("-", ""))[:8], "big")
    rate_bits = struct.unpack(">Q", struct.pack(">d", rate))[0]
    return leading ^ ((rate_bits * GOLDEN) & MASK64)


def poisson_counts(rate, periods, seed):
    """Knuth's multiplication method in slices of at most 30."""
    rng = generator(seed)
    counts = []
    for _ in range(periods):
        total, remaining = 0, rate
        while remaining > 0:
            piece = min(remaining, 30.0)
            limit = math.exp(-piece)
            p, k = 1.0, 1
            while True:
                p *= rng.random()
                if p <= limit:
                    break
                k += 1
            total += k - 1
            remaining -= piece
        counts.append(total)
    return counts


# --- history ------------------------------------------------------------------


def history(scenario, board, as_of):
    rate = scenario.get("estimate", DEFAULT_RATE)
    tier = "user_estimated" if "estimate" in scenario else "system_default"
    seed = filler_seed(scenario["id"], rate)
    filler = poisson_counts(rate, HISTORY_PERIODS, seed)
    created = utc_day(scenario["createdAt"])
    done_days = board.completion_days()
    periods = []
    for k in range(HISTORY_PERIODS):
        end = as_of - datetime.timedelta(days=PERIOD_DAYS * (HISTORY_PERIODS - 1 - k))
        start = end - datetime.timedelta(days=PERIOD_DAYS - 1)
        if start < created:
            count, provenance = filler[k], tier
        else:
            count, provenance = sum(1 for d in done_days if start <= d <= end), "actual"
        periods.append({"start": start.isoformat(), "end": end.isoformat(), "count": count, "provenance": provenance})
    return {"seed": seed, "counts": filler, "tier": tier}, periods


def adjusted(samples, percent):
    return samples if percent == 0 else [(percent / 100 + 1) * s for s in samples]


# --- simulation ---------------------------------------------------------------


class Simulation:
    """One seeded 10,000 x 520 matrix of drawn samples, cumulated per row:
    row t is simulation t, drawn period by period."""

    def __init__(self, samples, seed):
        index = generator(seed).integers(0, len(samples), size=(ITERATIONS, MAX_PERIODS), dtype=np.int64)
        self.cumulative = np.cumsum(np.asarray(samples, dtype=np.float64)[index], axis=1)

    def periods(self, backlog):
        reached = self.cumulative >= backlog
        finished = reached.any(axis=1)
        periods = np.where(finished, reached.argmax(axis=1) + 1, MAX_PERIODS).astype(np.int64)
        return periods, bool((~finished).any())

    def at_horizon(self, horizon):
        return self.cumulative[:, horizon - 1].copy() if horizon > 0 else np.zeros(ITERATIONS)


def percentile(values, q):
    return float(np.percentile(np.asarray(values, dtype=np.float64), q, method="linear"))


def percent_of(count):
    return int(count) / ITERATIONS * 100


def histogram(periods, as_of):
    values, counts = np.unique(periods, return_counts=True)
    bins, before = [], 0
    for value, count in zip(values.tolist(), counts.tolist()):
        share = before / ITERATIONS * 100
        bins.append({
            "period": value,
            "count": count,
            "probabilityPct": float("%.2f" % (count / ITERATIONS * 100)),
            "cumulativePct": float("%.2f" % ((before + count) / ITERATIONS * 100)),
            "band": next((f"p{level}" for level in LEVELS if share < level), "tail"),
            "date": (as_of + datetime.timedelta(days=value * PERIOD_DAYS)).isoformat(),
        })
        before += count
    return bins


def tickets_by(progress):
    ordered = np.sort(progress)
    return {str(level): math.floor(percentile(ordered, 100 - level)) for level in LEVELS}


def when(samples, backlog, commitment, as_of):
    seed = derive_seed(samples, backlog)
    if backlog == 0:
        periods, inconclusive = np.zeros(ITERATIONS, dtype=np.int64), False
    else:
        periods, inconclusive = Simulation(samples, seed).periods(backlog)
    ordered = np.sort(periods).astype(np.float64)
    weeks = {str(level): percentile(ordered, level) for level in LEVELS}
    confidence = None
    if commitment is not None:
        d = (commitment - as_of).days
        if backlog == 0:
            confidence = 100.0
        elif d < 0:
            confidence = 0.0
        else:
            confidence = percent_of(np.count_nonzero(periods <= d // PERIOD_DAYS))
    return {
        "seed": seed,
        "backlog": backlog,
        "periods": weeks,
        "dates": {level: forecast_date(as_of, p) for level, p in weeks.items()},
        "inconclusive": inconclusive,
        "commitmentConfidencePct": confidence,
        "histogram": histogram(periods, as_of),
    }


def by_date(samples, backlog, target, as_of):
    d = (target - as_of).days
    assert 0 < d <= 3646
    whole = d // PERIOD_DAYS
    seed = derive_seed(samples, backlog)
    completed = Simulation(samples, seed).at_horizon(whole)
    return {
        "seed": seed,
        "backlog": backlog,
        "wholePeriods": whole,
        "counts": tickets_by(completed),
        "backlogDonePct": 100.0 if backlog == 0 else percent_of(np.count_nonzero(completed >= backlog)),
    }


def iteration(samples, open_count, first_day, last_day, as_of):
    start = max(as_of, first_day) if first_day is not None else as_of
    d = (last_day - start).days + 1
    result = {"open": open_count, "daysLeft": max(d, 0)}
    if open_count == 0 or d < 1:
        return {**result, "probabilityPct": 100.0 if open_count == 0 else 0.0, "counts": {}}
    assert d <= 3639
    whole = d // PERIOD_DAYS
    fraction = (d - PERIOD_DAYS * whole) / PERIOD_DAYS
    seed = derive_seed(samples, open_count)
    simulation = Simulation(samples, seed)
    progress = simulation.at_horizon(whole)
    if fraction > 0:
        a, b = progress, simulation.at_horizon(whole + 1)
        progress = a + fraction * (b - a)
    return {
        **result,
        "seed": seed,
        "wholePeriods": whole,
        "fraction": fraction,
        "probabilityPct": percent_of(np.count_nonzero(progress >= open_count)),
        "counts": tickets_by(progress),
    }


def share_within(finishes, days):
    if finishes is None:
        return 100.0
    return int(np.count_nonzero(finishes <= days / 7.0)) / len(finishes) * 100


def roadmap(scenario, board, samples, as_of):
    epics = sorted(scenario["epics"], key=lambda e: e["name"])  # the service's order
    by_name = {e["name"]: e for e in epics}
    finishes = {}  # name -> per-simulation finish, absent with nothing open
    durations = {}
    opens = {e["name"]: board.open_of_epic(e["name"]) for e in epics}
    inconclusive = False
    for k, epic in enumerate(epics):
        if opens[epic["name"]] >= 1:
            seed = (derive_seed(samples, opens[epic["name"]]) + (k + 1) * GOLDEN) & MASK64
            periods, stuck = Simulation(samples, seed).periods(opens[epic["name"]])
            durations[epic["name"]] = periods.astype(np.float64)
            inconclusive = inconclusive or stuck

    # Depth-first, so every epic comes after the epics it waits for.
    order, seen = [], set()

    def visit(name):
        if name in seen:
            return
        seen.add(name)
        for before in by_name[name]["waitsFor"]:
            visit(before)
        order.append(name)

    for epic in epics:
        visit(epic["name"])
    for name in order:
        if name not in durations:
            continue
        epic = by_name[name]
        offset = (day(epic["startDate"]) - as_of).days if "startDate" in epic else 0
        start = np.full(ITERATIONS, max(offset, 0) / 7.0)
        for before in epic["waitsFor"]:
            if before in finishes:
                start = np.maximum(start, finishes[before])
        finishes[name] = start + durations[name]

    schedules = []
    for epic in epics:
        name = epic["name"]
        due = day(epic["dueDate"]) if "dueDate" in epic else None
        entry = {"name": name, "open": opens[name], "p50": None, "p85": None,
                 "dueDay": due.isoformat() if due else None, "chanceByDue": None}
        if name in finishes:
            ordered = np.sort(finishes[name])
            entry["p50"] = forecast_date(as_of, percentile(ordered, 50))
            entry["p85"] = forecast_date(as_of, percentile(ordered, 85))
        if due is not None:
            entry["chanceByDue"] = share_within(finishes.get(name), (due - as_of).days)
        schedules.append(entry)

    project = np.zeros(ITERATIONS)
    for values in finishes.values():
        project = np.maximum(project, values)
    ordered_project = np.sort(project)

    chances = []
    for milestone in scenario["milestones"]:
        days_left = (day(milestone["day"]) - as_of).days
        if milestone["done"]:
            chance = 100.0
        elif "epic" not in milestone:
            chance = 100.0 if days_left >= 0 else 0.0  # nothing to wait for: met unless its day has passed
        else:
            chance = share_within(finishes.get(milestone["epic"]), days_left)
        chances.append({"name": milestone["name"], "chance": chance})

    return {
        "epics": schedules,
        "projectDates": {str(level): forecast_date(as_of, percentile(ordered_project, level)) for level in LEVELS},
        "milestoneChances": chances,
        "inconclusive": inconclusive,
    }


# --- scenarios ----------------------------------------------------------------


def expected(scenario):
    board = Board(scenario)
    as_of = utc_day(scenario["now"])
    filler, periods = history(scenario, board, as_of)
    counts = [float(p["count"]) for p in periods]
    open_count = board.open_count()
    asks = scenario["forecasts"]
    iterations = {i["name"]: i for i in scenario["iterations"]}
    epics = {e["name"]: e for e in scenario["epics"]}

    def optional_day(text):
        return day(text) if text else None

    result = {
        "name": scenario["name"],
        "asOf": as_of.isoformat(),
        "createdDay": utc_day(scenario["createdAt"]).isoformat(),
        "openTickets": open_count,
        "completionDays": [d.isoformat() for d in board.completion_days()],
        "filler": filler,
        "history": periods,
        "when": [
            when(adjusted(counts, ask["whatIfPercent"]), max(open_count + ask["backlogChange"], 0),
                 optional_day(ask["commitment"]), as_of)
            for ask in asks["when"]
        ],
        "byDate": [
            by_date(adjusted(counts, ask["whatIfPercent"]), max(open_count + ask["backlogChange"], 0),
                    day(ask["target"]), as_of)
            for ask in asks["byDate"]
        ],
        "epic": [],
        "iteration": [],
    }
    for ask in asks["epic"]:
        epic = epics[ask["epic"]]
        what_if = (ask["share"] - 1) * 100
        forecast = when(adjusted(counts, what_if), board.open_of_epic(epic["name"]),
                        optional_day(epic.get("dueDate")), as_of)
        result["epic"].append({"whatIfPercent": what_if, **forecast})
    for ask in asks["iteration"]:
        it = iterations[ask["name"]]
        first = None if it["started"] else day(it["startDate"])
        forecast = iteration(adjusted(counts, ask["whatIfPercent"]), board.open_count(it["tickets"]), first,
                             day(it["endDate"]), as_of)
        result["iteration"].append(forecast)
    if asks["roadmap"]:
        result["roadmap"] = roadmap(scenario, board, counts, as_of)
    return result


def main():
    with open(os.path.join(DATA_DIR, "scenarios.json"), encoding="utf-8") as f:
        scenarios = json.load(f)["scenarios"]
    payload = {"scenarios": [expected(s) for s in scenarios]}
    text = json.dumps(payload, sort_keys=True, indent=1, allow_nan=False)
    with open(os.path.join(DATA_DIR, "expected.json"), "w", encoding="utf-8", newline="\n") as f:
        f.write(text + "\n")
    print(f"expected.json: {len(text) + 1} bytes")


if __name__ == "__main__":
    main()
