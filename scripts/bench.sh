#!/usr/bin/env bash
# Builds the benchmarks in Release, runs every one of them and writes
# docs/performance.md: machine, compiler, flags, a table of medians and the
# ratio of the library's clothoid point computation to the same arithmetic in
# bare doubles.
#
#   scripts/bench.sh [filter]     filter: a --benchmark_filter regular expression
#
#   BUILD_DIR   build folder (default: build-bench)
#   REPETITIONS repetitions per benchmark, the median is reported (default: 5)
#   MIN_TIME    minimum seconds per repetition (default: 0.2)
#   OUTPUT      the report to write (default: docs/performance.md)
set -euo pipefail
cd "$(dirname "$0")/.."

filter=${1:-.}
build_dir=${BUILD_DIR:-build-bench}
repetitions=${REPETITIONS:-5}
min_time=${MIN_TIME:-0.2}
output=${OUTPUT:-docs/performance.md}

scripts/setup.sh
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DZEL_BUILD_BENCHMARKS=ON \
  -DZEL_BUILD_TESTS=OFF -DZEL_BUILD_EXAMPLES=OFF ${ZEL_CMAKE_ARGS:-} >/dev/null
cmake --build "$build_dir" -j "$(nproc)" --target benchmarks

results="$build_dir/bench-results"
rm -rf "$results"
mkdir -p "$results"
for b in "$build_dir"/bench/bench_*; do
  [ -f "$b" ] && [ -x "$b" ] || continue
  name=$(basename "$b")
  echo "== $name"
  "$b" --benchmark_filter="$filter" --benchmark_repetitions="$repetitions" \
    --benchmark_report_aggregates_only=true --benchmark_min_time="$min_time" \
    --benchmark_out="$results/$name.json" --benchmark_out_format=json >/dev/null
done

cxx=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build_dir/CMakeCache.txt")
flags=$(sed -n 's/^CMAKE_CXX_FLAGS_RELEASE:[A-Z]*=//p' "$build_dir/CMakeCache.txt")
python3 - "$results" "$output" "$("$cxx" --version | head -n 1)" "$flags" "$repetitions" "$min_time" <<'PY'
import datetime, glob, json, os, platform, sys

results, output, compiler, flags, repetitions, min_time = sys.argv[1:7]

def cpu_model():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or "unknown"

def fmt(ns):
    if ns >= 1e6:
        return "%.2f ms" % (ns / 1e6)
    if ns >= 1e3:
        return "%.2f µs" % (ns / 1e3)
    return "%.1f ns" % ns

to_ns = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
programs = {}
context = None
for path in sorted(glob.glob(os.path.join(results, "*.json"))):
    with open(path) as f:
        data = json.load(f)
    context = context or data.get("context", {})
    rows = []
    for b in data.get("benchmarks", []):
        if b.get("aggregate_name") != "median":
            continue
        scale = to_ns[b.get("time_unit", "ns")]
        rows.append({
            "name": b["run_name"],
            "label": b.get("label", ""),
            "real": b["real_time"] * scale,
            "cpu": b["cpu_time"] * scale,
            "items": b.get("items_per_second"),
        })
    programs[os.path.basename(path)[:-5]] = rows

def median_cpu(program, name):
    for r in programs.get(program, []):
        if r["name"] == name:
            return r["cpu"]
    return None

lines = []
lines.append("# Performance")
lines.append("")
lines.append("Measured by `scripts/bench.sh` (Google Benchmark); regenerate with that script.")
lines.append("Each figure is the median of %s repetitions of at least %s s each." % (repetitions, min_time))
lines.append("CPU time is the time the calling thread spent computing; wall time also")
lines.append("contains whatever else the machine was doing, so CPU time is the figure to")
lines.append("compare. There are no timing assertions in the tests: these numbers are")
lines.append("information, not requirements.")
lines.append("")
lines.append("## Machine and build")
lines.append("")
lines.append("| | |")
lines.append("|---|---|")
lines.append("| date | %s |" % datetime.date.today().isoformat())
lines.append("| processor | %s |" % cpu_model())
lines.append("| cores | %s |" % (context.get("num_cpus", os.cpu_count()) if context else os.cpu_count()))
if context and context.get("mhz_per_cpu"):
    lines.append("| clock (reported) | %s MHz |" % context["mhz_per_cpu"])
lines.append("| system | %s %s |" % (platform.system(), platform.release()))
lines.append("| compiler | %s |" % compiler)
lines.append("| flags | `%s` (CMake Release), `-std=c++17`, shared libraries |" % flags.strip())
if context and context.get("library_build_type"):
    lines.append("| Google Benchmark library | built as %s (Debian package) |" % context["library_build_type"])
lines.append("")

lines.append("## Library against bare doubles")
lines.append("")
lines.append("The point at a station of a clothoid transition (straight into R 600 m,")
lines.append("A = 300 m, 64 stations over the element), computed three ways: by")
lines.append("`CMathClothoid::Kleinpunkt`, by the same steps written in the benchmark with")
lines.append("the zellib value types, and by the same steps in bare doubles (the floor).")
lines.append("The benchmarks check before measuring that all three give the same point.")
lines.append("")
lines.append("| computation | median CPU time | ratio to bare doubles |")
lines.append("|---|---|---|")
pairs = [
    ("library `CMathClothoid::Kleinpunkt`", "bench_clothoid", "BM_ClothoidKleinpunkt_Library", "bench_clothoid", "BM_ClothoidKleinpunkt_Bare"),
    ("value types, same steps", "bench_value_types", "BM_ClothoidKleinpunkt_ValueTypes", "bench_value_types", "BM_ClothoidKleinpunkt_Bare"),
    ("four-term series only, value types", "bench_value_types", "BM_ClothoidSeries_ValueTypes", "bench_value_types", "BM_ClothoidSeries_Bare"),
]
for title, p, n, bp, bn in pairs:
    t, base = median_cpu(p, n), median_cpu(bp, bn)
    if t is None or base is None:
        lines.append("| %s | not measured | |" % title)
    else:
        lines.append("| %s | %s | **%.2f** (bare: %s) |" % (title, fmt(t), t / base, fmt(base)))
lines.append("")

titles = {
    "bench_value_types": "Value types",
    "bench_line": "Straight",
    "bench_circle": "Circular arc and circles",
    "bench_clothoid": "Clothoid",
    "bench_transitions": "Cubic parabola and half-sine transition",
    "bench_profile_station_map": "Vertical curves and station map 2D/3D",
    "bench_plane": "Plane",
    "bench_station_map": "Station map 2D/3D",
    "bench_alignment_stationing": "Alignment stationing on the shipped sample (wall time; points per second over all threads)",
}
lines.append("## All benchmarks")
lines.append("")
lines.append("For the foot (`Lot`) the argument after the element shape says where the")
lines.append("measured point lies: 0 on the element, 1 beside it (5 m), 2 far from it")
lines.append("(5 km); the label gives the result code obtained. Station-map arguments are")
lines.append("the number of elements in the map.")
for program in sorted(programs, key=lambda p: list(titles).index(p) if p in titles else 99):
    rows = programs[program]
    if not rows:
        continue
    lines.append("")
    lines.append("### %s (`%s`)" % (titles.get(program, program), program))
    lines.append("")
    lines.append("| benchmark | median CPU | median wall | note |")
    lines.append("|---|---|---|---|")
    for r in rows:
        note = r["label"]
        if r["items"]:
            note = (note + "; " if note else "") + "%.0f points/s" % r["items"]
        lines.append("| `%s` | %s | %s | %s |" % (r["name"], fmt(r["cpu"]), fmt(r["real"]), note))
lines.append("")
with open(output, "w") as f:
    f.write("\n".join(lines))
print("wrote", output)
PY
