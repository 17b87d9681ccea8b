#!/usr/bin/python3
"""Throughput of the Python package against the C++ batch, and on Dask.

Stations the same generated points around the sample alignment three ways:

* C++: Alignment::Station into caller-owned columns (bench/python/station_rate.cpp,
  target zel_python_station_rate), on one thread;
* Python: zelmath.Alignment.station on numpy arrays, on one thread;
* Dask: zelmath.dask.station on a LocalCluster of 1 and 2 worker processes
  (one thread each), the partitions generated and held on the workers.

Each figure is the best of several runs (the machine is shared: the best run
is the one least disturbed). Writes a Markdown page.

    cmake --build build --target zelmath_python zel_python_station_rate -j2
    PYTHONPATH=build/python /usr/bin/python3 bench/python/bench_station.py --build build \\
        --out docs/python-performance.md
"""

import argparse
import datetime
import os
import pathlib
import platform
import subprocess
import sys
import tempfile
import time

import numpy as np

import zelmath

ROOT = pathlib.Path(__file__).resolve().parents[2]
SAMPLE = ROOT / "data" / "sample" / "alignment.xml"
# Points up to this far (metres) off the axis.
HALF_WIDTH = 8.0
# Dask: points and partitions of the cluster runs.
DASK_POINTS = 2_000_000
DASK_PARTITIONS = 8
# Rounds of the C++ / Python comparison: enough that each side stations at
# least ROUND_POINTS points in all, at most MAX_ROUNDS.
ROUND_POINTS = 2_000_000
MAX_ROUNDS = 20


def generate(alignment, n, seed):
    rng = np.random.default_rng(seed)
    p = alignment.point_at(rng.uniform(alignment.start_station, alignment.end_station, n))
    off = rng.uniform(-HALF_WIDTH, HALF_WIDTH, n)
    east = p.east + off * np.cos(p.azimuth)
    north = p.north - off * np.sin(p.azimuth)
    height = p.design_height + rng.normal(0.0, 0.01, n)
    return east, north, height


def cpp_rate(program, east, north, height, repeats):
    """Best seconds of the C++ batch, and the stations it computed."""
    with tempfile.TemporaryDirectory() as tmp:
        points = os.path.join(tmp, "points.f64")
        stations = os.path.join(tmp, "stations.f64")
        np.concatenate([east, north, height]).astype(np.float64).tofile(points)
        out = subprocess.run([program, str(SAMPLE), points, str(len(east)), str(repeats), "1", stations],
                             check=True, capture_output=True, text=True).stdout.split()
        return float(out[1]), np.fromfile(stations, dtype=np.float64)


def python_rate(alignment, east, north, height, repeats):
    """Best seconds of the Python call, and the stations it computed."""
    best = float("inf")
    for _ in range(repeats):
        t0 = time.perf_counter()
        r = alignment.station(east, north, height)
        best = min(best, time.perf_counter() - t0)
    return best, r.station


def dask_rate(alignment, workers, repeats):
    import dask.dataframe as dd
    import pandas as pd
    from dask.distributed import Client, LocalCluster, wait

    import zelmath.dask

    rows = DASK_POINTS // DASK_PARTITIONS

    def partition(seed, alignment):
        e, n, h = generate(alignment, rows, seed)
        return pd.DataFrame({"east": e, "north": n, "height": h})

    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=":0",
                      silence_logs=40) as cluster, Client(cluster):
        meta = pd.DataFrame({"east": [], "north": [], "height": []})
        ddf = dd.from_map(partition, list(range(DASK_PARTITIONS)), alignment=alignment, meta=meta).persist()
        wait(ddf)
        best = float("inf")
        for _ in range(repeats):
            t0 = time.perf_counter()
            zelmath.dask.station(ddf, alignment, height="height")["station"].sum().compute()
            best = min(best, time.perf_counter() - t0)
    return best


def cpu_name():
    try:
        for line in open("/proc/cpuinfo"):
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor()


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("--build", default="build", help="the CMake build folder")
    ap.add_argument("--points", type=int, nargs="+", default=[100_000, 1_000_000])
    ap.add_argument("--repeats", type=int, default=5)
    ap.add_argument("--no-dask", action="store_true")
    ap.add_argument("--out", help="Markdown page to write (default: print)")
    args = ap.parse_args()

    program = pathlib.Path(args.build) / "bench" / "python" / "station_rate"
    alignment = zelmath.read_landxml(SAMPLE)
    load_before = os.getloadavg()
    rows = []
    for n in args.points:
        east, north, height = generate(alignment, n, seed=n)
        # C++ and Python runs alternate, so that both meet the same changes of
        # load; each run allocates its result columns afresh.
        # Short arrays get more rounds: a run of 1e5 points is over in a
        # fraction of a second, where one disturbance weighs heavily.
        rounds = min(MAX_ROUNDS, max(args.repeats, ROUND_POINTS // n))
        cpp_s = py_s = float("inf")
        for _ in range(rounds):
            s, cpp_stations = cpp_rate(str(program), east, north, height, 1)
            cpp_s = min(cpp_s, s)
            s, py_stations = python_rate(alignment, east, north, height, 1)
            py_s = min(py_s, s)
        if not np.array_equal(cpp_stations, py_stations, equal_nan=True):
            sys.exit("C++ and Python stationed differently")
        rows.append((n, n / cpp_s, n / py_s))
        print(f"{n} points: C++ {n / cpp_s:,.0f}/s, Python {n / py_s:,.0f}/s ({cpp_s / py_s:.1%})", flush=True)
    dask_rows = []
    if not args.no_dask:
        for w in (1, 2):
            s = dask_rate(alignment, w, max(2, args.repeats // 2))
            dask_rows.append((w, DASK_POINTS / s))
            print(f"Dask, {w} worker(s): {DASK_POINTS / s:,.0f}/s", flush=True)
    load_after = os.getloadavg()

    lines = [
        "# Python performance",
        "",
        "Measured by `bench/python/bench_station.py`; regenerate with",
        "",
        "```sh",
        "cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DZEL_BUILD_PYTHON=ON",
        "cmake --build build --target zelmath_python zel_python_station_rate -j2",
        "PYTHONPATH=build/python /usr/bin/python3 bench/python/bench_station.py --build build \\",
        "    --out docs/python-performance.md",
        "```",
        "",
        "The points are generated within 8 m of the sample alignment (every element",
        "kind), with heights. Each figure is the best of several runs: the machine is",
        "shared, and the best run is the one least disturbed by the rest. C++ and",
        "Python runs alternate, each allocating its result columns afresh; they",
        "station the same points and are checked to give the same stations, bit for",
        "bit. These numbers are information, not requirements.",
        "",
        "## Machine",
        "",
        "| | |",
        "|---|---|",
        f"| date | {datetime.date.today().isoformat()} |",
        f"| processor | {cpu_name()} |",
        f"| cores | {os.cpu_count()} |",
        f"| load average (1 min) before and after | {load_before[0]:.1f}, {load_after[0]:.1f} |",
        f"| Python | {platform.python_version()} ({sys.executable}) |",
        f"| numpy | {np.__version__} |",
        "",
        "## Python batch against the C++ batch (one thread)",
        "",
        "C++: `Alignment::Station` into caller-owned columns (`StationColumns`), the",
        "call the package makes. Python: `Alignment.station(east, north, height)` on",
        "numpy arrays, which adds the conversion of the arguments, the allocation of",
        "the ten result arrays and the result object.",
        "",
        "| points | C++ points/s | Python points/s | Python / C++ |",
        "|---:|---:|---:|---:|",
    ]
    for n, c, p in rows:
        lines.append(f"| {n:,} | {c:,.0f} | {p:,.0f} | {p / c:.1%} |")
    if dask_rows:
        lines += [
            "",
            f"## Dask ({DASK_POINTS:,} points in {DASK_PARTITIONS} partitions)",
            "",
            "`zelmath.dask.station` on a `LocalCluster` of worker processes with one",
            "thread each; the partitions are generated and held on the workers, and",
            "the time covers stationing them and summing a column (no transfer of the",
            "results). With 2 cores, 2 workers share the machine with the scheduler",
            "and the client.",
            "",
            "| workers | points/s |",
            "|---:|---:|",
        ]
        for w, r in dask_rows:
            lines.append(f"| {w} | {r:,.0f} |")
    lines += [
        "",
        "## Reading the figures",
        "",
        "Per point, both sides run the same library call; the Python call adds a",
        "fixed cost (argument conversion, ten result arrays, the result object) that",
        "vanishes against 1e5 points. What differences remain come from the load of",
        "the machine (the load average above, on the cores given), which varies",
        "between runs by more than that cost. The Dask figures include the",
        "scheduler's work, moving each task and the alignment (rebuilt from its",
        "LandXML text per task) to a worker and the result of each partition; on a",
        "machine whose cores are already busy a second worker finds little idle",
        "time to use. On idle cores each worker stations at the rate of one Python",
        "call less that overhead.",
    ]
    text = "\n".join(lines) + "\n"
    if args.out:
        pathlib.Path(args.out).write_text(text)
    else:
        print(text)


if __name__ == "__main__":
    main()
