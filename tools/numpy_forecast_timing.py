#!/usr/bin/python3
"""Times the benchmark forecast done the plain NumPy way, for the README.

Twelve weekly samples, a backlog of 100, 10,000 simulations of 520 weeks,
with and without a horizon of 8 weeks: the same work as bench/, drawn from
the same stream (Generator(PCG64(SeedSequence(seed))), integers with a 64-bit
dtype), so the figures compare like with like.

Usage: tools/numpy_forecast_timing.py [repeats]
"""
import hashlib
import sys
import time

import numpy as np

SAMPLES = [3.0, 5.0, 4.0, 6.0, 2.0, 7.0, 5.0, 4.0, 3.0, 6.0, 5.0, 4.0]
BACKLOG = 100
ITERATIONS = 10_000
MAX_PERIODS = 520


def derived_seed(samples, backlog):
    text = repr((backlog, tuple(samples)))
    return int.from_bytes(hashlib.sha256(text.encode()).digest()[:4], "big")


def forecast(samples, backlog, horizon=None):
    rng = np.random.Generator(np.random.PCG64(np.random.SeedSequence(derived_seed(samples, backlog))))
    values = np.asarray(samples)[rng.integers(0, len(samples), size=(ITERATIONS, MAX_PERIODS), dtype=np.int64)]
    cumulative = np.cumsum(values, axis=1)
    done = cumulative >= backlog
    periods = np.where(done.any(axis=1), done.argmax(axis=1) + 1, MAX_PERIODS)
    percentiles = np.percentile(np.sort(periods).astype(np.float64), [50, 70, 85, 95], method="linear")
    by_horizon = cumulative[:, horizon - 1] if horizon else None
    return percentiles, by_horizon


def best_of(repeats, call):
    best = float("inf")
    for _ in range(repeats):
        start = time.perf_counter()
        call()
        best = min(best, time.perf_counter() - start)
    return best * 1000


def main():
    repeats = int(sys.argv[1]) if len(sys.argv) > 1 else 20
    print(f"numpy {np.__version__}, best of {repeats}")
    print(f"forecast without horizon: {best_of(repeats, lambda: forecast(SAMPLES, BACKLOG)):.1f} ms")
    print(f"forecast with horizon 8:  {best_of(repeats, lambda: forecast(SAMPLES, BACKLOG, 8)):.1f} ms")
    percentiles, _ = forecast(SAMPLES, BACKLOG)
    print("p50/p70/p85/p95:", " ".join(f"{p:g}" for p in percentiles))


if __name__ == "__main__":
    main()
