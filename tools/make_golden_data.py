#!/usr/bin/python3
"""Writes the reference data that tests/engine/NumpyGoldenTest.cpp checks the
forecast engine against, bit for bit.

Everything here is computed with NumPy and the Python standard library alone;
nothing calls the engine, so an agreement between the two is evidence rather
than an echo. The engine's random streams are meant to be NumPy's
Generator(PCG64(SeedSequence(seed))) and its seed text Python's repr, which is
why those are the reference.

The output is deterministic (sorted keys, no timestamps): rerunning the script
must leave tests/data/engine/ byte for byte unchanged.

Run with the system interpreter that has NumPy:  /usr/bin/python3 tools/make_golden_data.py
"""

import datetime
import hashlib
import json
import math
import os
import struct

import numpy as np

OUT_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "engine")

EPOCH_ORDINAL = datetime.date(1970, 1, 1).toordinal()
PERIOD_DAYS = 7
LEVELS = (50, 70, 85, 95)
TWELVE = [3.0, 5.0, 4.0, 6.0, 2.0, 7.0, 5.0, 4.0, 3.0, 6.0, 5.0, 4.0]


def generator(seed):
    return np.random.Generator(np.random.PCG64(np.random.SeedSequence(seed)))


def bits(x):
    """The IEEE-754 bit pattern of a double as 16 hex digits: immune to any
    decimal parsing on the reading side."""
    return struct.pack(">d", x).hex()


def double_from_bits(text):
    return struct.unpack(">d", bytes.fromhex(text))[0]


def days_since_epoch(date):
    return date.toordinal() - EPOCH_ORDINAL


def date_from_days(days):
    return datetime.date.fromordinal(days + EPOCH_ORDINAL)


def write(name, payload):
    text = json.dumps(payload, sort_keys=True, separators=(",", ":"), allow_nan=False)
    with open(os.path.join(OUT_DIR, name), "w", encoding="utf-8", newline="\n") as f:
        f.write(text + "\n")
    print(f"{name}: {len(text) + 1} bytes")


# --- random streams -------------------------------------------------------

STREAM_SEEDS = [0, 1, 12345, 2**32, 2**63 + 5, 2**64 - 1]


def uint32_draws(rng, count):
    # With the bound 2**32 NumPy returns the bit generator's buffered 32-bit
    # output unchanged, so this is a sequence of plain 32-bit draws.
    return [int(v) for v in rng.integers(0, 2**32, size=count, dtype=np.uint64)]


def pcg64_case(seed):
    sequence = np.random.SeedSequence(seed)
    bit_generator = np.random.PCG64(np.random.SeedSequence(seed))
    state = bit_generator.state
    assert state["has_uint32"] == 0

    raw = [int(v) for v in np.random.PCG64(np.random.SeedSequence(seed)).random_raw(1000)]
    doubles = [bits(float(v)) for v in generator(seed).random(200)]

    # Pins the 32-bit buffer: random_raw and random() take fresh 64-bit
    # outputs and leave a waiting half where it is.
    rng = generator(seed)
    mixed = [
        ["uint32", int(rng.integers(0, 2**32, dtype=np.uint64))],
        ["uint64", int(rng.bit_generator.random_raw())],
        ["uint32", int(rng.integers(0, 2**32, dtype=np.uint64))],
        ["double", bits(float(rng.random()))],
        ["uint32", int(rng.integers(0, 2**32, dtype=np.uint64))],
        ["uint32", int(rng.integers(0, 2**32, dtype=np.uint64))],
    ]
    return {
        "seed": seed,
        "state": str(state["state"]["state"]),
        "inc": str(state["state"]["inc"]),
        "pool": [int(w) for w in sequence.pool],
        "generateState64": [int(w) for w in sequence.generate_state(4, np.uint64)],
        "raw": raw,
        "uint32": uint32_draws(generator(seed), 1001),
        "doubles": doubles,
        "mixed": mixed,
    }


def bounded_cases():
    cases = []
    for n in [1, 2, 12, 1000, 2**31 + 1, 2**32]:
        for seed in [0, 1, 2**32, 2**63 + 5]:
            rng = generator(seed)
            draws = [int(v) for v in rng.integers(0, n, size=2000, dtype=np.int64)]
            # random_raw does not touch the 32-bit buffer, so this shows how
            # many 64-bit outputs the draws (rejections included) consumed.
            next_raw = int(rng.bit_generator.random_raw())
            cases.append({"n": n, "seed": seed, "draws": draws, "nextRaw": next_raw})
    return cases


# --- seed derivation and float repr ----------------------------------------


def seed_text(backlog, samples):
    return repr((backlog, tuple(samples)))


def derive_seed(backlog, samples):
    digest = hashlib.sha256(seed_text(backlog, samples).encode("utf-8")).digest()
    return int.from_bytes(digest[:4], "big")


def adjusted(samples, percent):
    return [(percent / 100 + 1) * s for s in samples]


def seed_cases():
    table = [
        (30, [3.0, 5.0, 4.0]),
        (0, []),
        (0, [7.0]),
        (100, TWELVE),
        (12, [2.5]),
        (45, [3.3000000000000003, 2.5, 0.0]),
        (60, adjusted(TWELVE, -37.5)),
        (60, adjusted(TWELVE, 12.3)),
        (5, adjusted(TWELVE, -99.99)),
        (1, adjusted(TWELVE, -99.999999)),
        (7, [0.0, 0.0, 0.0, 1.0]),
        (3, [1e-05, 0.0001, 9.999999999999999e-05]),
        (1000000, [1e16, 1.5e16, 123456789012345.6]),
        (2**62, [9999999999999998.0, 0.1, 1 / 3]),
        (1, [0.0]),
    ]
    cases = []
    for backlog, samples in table:
        cases.append({
            "backlog": backlog,
            "samples": samples,
            "repr": seed_text(backlog, samples),
            "seed": derive_seed(backlog, samples),
        })
    return cases


def float_repr_values():
    values = [
        0.0, -0.0, 1.0, 2.0, 3.0, 7.0, 10.0, 100.0, 520.0, 123456.0, -1.0, -2.5, -520.0,
        0.5, 0.25, 0.125, 2.5, 3.3000000000000003, 4.35, 123.456,
        0.1, 0.2, 0.30000000000000004, 1 / 3, 2 / 3, 1 / 7,
        5e-324, -5e-324, 2.2250738585072014e-308, 2.225073858507201e-308,
        1e-300, 1.2345678901234567e-300,
        0.0001, 9.999999999999999e-05, 0.00010000000000000002, 1e-05, 1.5e-05, -1e-05,
        1e-07, 3.0000000150742778e-08,
        9007199254740992.0, 9007199254740994.0, 999999999999999.9,
        9999999999999998.0, 1e16, 1.0000000000000002e16, 1.5e16, -1e16,
        123456789012345.6, 1e21, 1e22, 1e23, 1e100, 1.7976931348623157e308,
        -1.7976931348623157e308,
        math.inf, -math.inf, math.nan, -math.nan,
    ]
    values += adjusted(TWELVE[:3], -37.5) + adjusted(TWELVE[:3], 12.3)
    values += adjusted([3.0], -99.99) + adjusted([3.0], -99.999999)
    # A few arbitrary doubles with long shortest forms.
    values += [float(v) for v in generator(2024).random(6) * 1000]
    return [{"bits": bits(v), "repr": repr(v)} for v in values]


# --- civil dates ------------------------------------------------------------


def civil_rows():
    dates = set()
    for year in range(1600, 2401):
        for month in range(1, 13):
            dates.add(datetime.date(year, month, 1))
    for year in range(1904, 2401, 4):
        if year % 100 != 0 or year % 400 == 0:
            dates.add(datetime.date(year, 2, 29))
        else:
            dates.update({datetime.date(year, 2, 28), datetime.date(year, 3, 1)})
    for anchor in [datetime.date(1970, 1, 1), datetime.date(2000, 2, 29)]:
        for offset in range(-3, 4):
            dates.add(anchor + datetime.timedelta(days=offset))
    dates.update({
        datetime.date(1, 1, 1), datetime.date(1, 1, 2), datetime.date(1, 12, 31),
        datetime.date(9999, 1, 1), datetime.date(9999, 12, 30), datetime.date(9999, 12, 31),
    })
    return [[days_since_epoch(d), d.isoformat()] for d in sorted(dates)]


# --- cold start -------------------------------------------------------------


def poisson_counts(lam, periods, seed):
    rng = generator(seed)
    counts = []
    for _ in range(periods):
        total = 0
        remaining = lam
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


def coldstart_cases():
    return [
        {"lambda": lam, "seed": seed, "periods": poisson_counts(lam, 12, seed)}
        for lam in [0.0, 0.5, 5.0, 29.9, 30.0, 45.0, 100.5]
        for seed in [0, 7, 2**40 + 3]
    ]


# --- whole forecasts --------------------------------------------------------


def percentile(values, q):
    return float(np.percentile(np.asarray(values, dtype=np.float64), q, method="linear"))


def level_date(run_at, periods):
    days = periods * PERIOD_DAYS
    snapped = round(days * 8.64e10) / 8.64e10
    return (run_at + datetime.timedelta(days=math.floor(snapped))).isoformat()


def histogram(distribution, iterations, run_at):
    values, counts = np.unique(np.asarray(distribution, dtype=np.int64), return_counts=True)
    bins, before = [], 0
    for value, count in zip(values.tolist(), counts.tolist()):
        # The band is decided by the share of simulations before the bin.
        share = before / iterations * 100
        band = next((f"p{level}" for level in LEVELS if share < level), "tail")
        bins.append({
            "period": value,
            "count": count,
            "probabilityPct": float("%.2f" % (count / iterations * 100)),
            "cumulativePct": float("%.2f" % ((before + count) / iterations * 100)),
            "band": band,
            "date": (run_at + datetime.timedelta(days=value * PERIOD_DAYS)).isoformat(),
        })
        before += count
    return bins


def forecast(name, samples, backlog, iterations, max_periods, seed, horizon, run_at):
    used_seed = seed if seed is not None else derive_seed(backlog, samples)
    rng = generator(used_seed)
    pool = np.asarray(samples, dtype=np.float64)
    periods = np.zeros(iterations, dtype=np.int64)
    completed = np.zeros(iterations, dtype=np.float64) if horizon is not None else None
    inconclusive = False

    if backlog > 0 or horizon is not None:
        # Row t is simulation t: the engine draws period by period, simulation
        # by simulation, which is this matrix in row-major order.
        index = rng.integers(0, len(samples), size=(iterations, max_periods), dtype=np.int64)
        cumulative = np.cumsum(pool[index], axis=1)
        if horizon is not None and horizon > 0:
            completed = cumulative[:, horizon - 1].copy()
        if not (horizon is not None and backlog == 0):
            if max_periods == 0:
                inconclusive = True  # no simulation can finish without periods
            else:
                reached = cumulative >= backlog
                finished = reached.any(axis=1)
                periods = np.where(finished, reached.argmax(axis=1) + 1, max_periods).astype(np.int64)
                inconclusive = bool((~finished).any())

    ordered = np.sort(periods).astype(np.float64)
    levels = {str(level): percentile(ordered, level) for level in LEVELS}
    case = {
        "name": name,
        "samples": [float(s) for s in samples],
        "backlog": backlog,
        "iterations": iterations,
        "maxPeriods": max_periods,
        "seed": seed,
        "usedSeed": used_seed,
        "horizon": horizon,
        "runAt": run_at.isoformat(),
        "percentiles": levels,
        "inconclusive": inconclusive,
        "periodsDistribution": periods.tolist(),
        "completedByHorizon": None if completed is None else completed.tolist(),
        "ticketsByHorizon": None,
        "dates": {level: level_date(run_at, p) for level, p in levels.items()},
        "histogram": histogram(periods, iterations, run_at),
    }
    if completed is not None:
        ordered_completed = np.sort(completed)
        case["ticketsByHorizon"] = {
            str(level): math.floor(percentile(ordered_completed, 100 - level)) for level in LEVELS
        }
    return case


def forecast_cases():
    march = datetime.date(2026, 3, 5)
    new_year = datetime.date(2025, 12, 29)
    leap = datetime.date(2028, 2, 20)
    return [
        forecast("benchmark", TWELVE, 100, 10000, 520, None, None, march),
        forecast("benchmark with horizon 8", TWELVE, 100, 10000, 520, None, 8, march),
        forecast("three samples, given seed", [3.0, 5.0, 4.0], 30, 2000, 520, 42, None, new_year),
        forecast("what-if -37.5%, horizon 13", adjusted(TWELVE, -37.5), 60, 3000, 520, None, 13, leap),
        forecast("all samples zero", [0.0, 0.0, 0.0], 5, 500, 520, None, None, march),
        forecast("single sample draws nothing", [5.0], 12, 200, 520, None, None, march),
        forecast("empty backlog", TWELVE, 0, 300, 520, None, None, march),
        forecast("empty backlog, horizon 4", TWELVE, 0, 500, 520, None, 4, leap),
        forecast("horizon 0", [3.0, 5.0, 4.0], 30, 500, 520, None, 0, march),
        forecast("no periods simulated", [3.0, 5.0, 4.0], 30, 100, 0, None, None, march),
        forecast("slow team, some never finish", [0.0, 0.0, 0.0, 1.0], 130, 1000, 520, None, None, new_year),
        forecast("two samples", [1.0, 4.0], 25, 2000, 520, None, 6, march),
        forecast("seven samples, 64-bit seed", [0.0, 1.0, 2.5, 3.0, 8.0, 2.0, 5.0], 40, 2000, 520,
                 2**63 + 5, None, new_year),
    ]


def main():
    os.makedirs(OUT_DIR, exist_ok=True)
    write("pcg64.json", {"seeds": [pcg64_case(seed) for seed in STREAM_SEEDS]})
    write("bounded.json", {"cases": bounded_cases()})
    floats = float_repr_values()
    assert all(repr(double_from_bits(f["bits"])) == f["repr"] for f in floats)
    write("seeds.json", {"cases": seed_cases(), "floatRepr": floats})
    write("civil.json", {"dates": civil_rows()})
    write("coldstart.json", {"cases": coldstart_cases()})
    write("forecasts.json", {"cases": forecast_cases()})


if __name__ == "__main__":
    main()
