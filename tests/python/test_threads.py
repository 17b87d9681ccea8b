"""Threads: the results do not depend on threads=, calls from several Python
threads give the results of one call, and the GIL is free while C++ works."""

import threading
import time

import numpy as np

import zelmath

POINTS = 200_000
# A call long enough that a held GIL would show as one long stall of the
# main thread; the stall allowed is a fraction of the call's duration.
LONG_CALL_POINTS = 1_000_000
LONGEST_STALL_FRACTION = 0.5


def scan(alignment, n, seed=7):
    rng = np.random.default_rng(seed)
    s = rng.uniform(alignment.start_station - 20.0, alignment.end_station + 20.0, n)
    p = alignment.point_at(np.clip(s, alignment.start_station, alignment.end_station))
    off = rng.uniform(-8.0, 8.0, n)
    east = p.east + off * np.cos(p.azimuth)
    north = p.north - off * np.sin(p.azimuth)
    return east, north, rng.uniform(400.0, 450.0, n)


def assert_same(a, b):
    for col in a.keys():
        np.testing.assert_array_equal(a[col], b[col], err_msg=col)


def test_threads_argument_gives_the_same_results(sample):
    east, north, height = scan(sample, POINTS)
    one = sample.station(east, north, height)
    assert_same(one, sample.station(east, north, height, threads=2))
    assert_same(one, sample.station(east, north, height, threads=0))
    assert_same(one, sample.station(east, north, height, threads=7))
    s = np.linspace(sample.start_station, sample.end_station, POINTS)
    p1, p2 = sample.point_at(s), sample.point_at(s, threads=3)
    for col in p1.keys():
        np.testing.assert_array_equal(p1[col], p2[col])


def test_python_threads_share_one_alignment(sample):
    east, north, height = scan(sample, POINTS)
    whole = sample.station(east, north, height)
    chunks = np.array_split(np.arange(POINTS), 4)
    results = [None] * len(chunks)

    def work(i):
        idx = chunks[i]
        results[i] = sample.station(east[idx], north[idx], height[idx])

    threads = [threading.Thread(target=work, args=(i,)) for i in range(len(chunks))]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    for col in whole.keys():
        np.testing.assert_array_equal(np.concatenate([r[col] for r in results]), whole[col])


def test_the_gil_is_released_during_a_call(sample):
    east, north, _ = scan(sample, LONG_CALL_POINTS)
    started = threading.Event()
    span = {}

    def work():
        started.set()
        t0 = time.perf_counter()
        sample.station(east, north)
        span["call"] = time.perf_counter() - t0

    worker = threading.Thread(target=work)
    worker.start()
    started.wait()
    last = time.perf_counter()
    longest = 0.0
    while worker.is_alive():
        now = time.perf_counter()
        longest = max(longest, now - last)
        last = now
        time.sleep(0)
    worker.join()
    # With the GIL held the main thread would stall for the whole call.
    assert longest < LONGEST_STALL_FRACTION * span["call"], (longest, span["call"])
