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
#   CALLGRIND   1: also count instructions per point of the stationing
#               against the alignment's length (scripts/bench-callgrind.sh,
#               a few minutes under valgrind)
#   TOOL_POINTS points in the file zel station reads for its throughput,
#               made from the sample's by scripts/bench-points.py (default:
#               1,000,000)
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
cmake --build "$build_dir" -j "$(nproc)" --target benchmarks zel

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

# Throughput of the tool: zel station on TOOL_POINTS points made from the
# sample's by scripts/bench-points.py (reading, stationing, writing), with 1
# thread and with every hardware thread; CPU time (user + system) and wall
# time of the process, and the machine's load average (1 minute) before each run.
tool_points="$build_dir/bench-tool-points.csv"
scripts/bench-points.py "$tool_points" "${TOOL_POINTS:-1000000}"
: > "$results/tool.txt"
# Each repetition runs every thread count and then, to tell how many cores
# the machine had free at that moment, two one-thread runs side by side (as
# fast as one alone on two idle cores, twice as slow when only one is free).
for rep in $(seq "$repetitions"); do
  for threads in $(printf '%s\n' 1 2 "$(nproc)" | sort -un); do
    load=$(cut -d' ' -f1 /proc/loadavg)
    /usr/bin/time -f "$threads %U %S %e $load" -a -o "$results/tool.txt" \
      "$build_dir/tools/zel/zel" station data/sample/alignment.xml "$tool_points" -o /dev/null --threads "$threads"
  done
  start=$(date +%s.%N)
  for copy in 1 2; do
    "$build_dir/tools/zel/zel" station data/sample/alignment.xml "$tool_points" -o /dev/null --threads 1 2>/dev/null &
  done
  wait
  end=$(date +%s.%N)
  awk -v a="$start" -v b="$end" 'BEGIN { printf "pair %.3f\n", b - a }' >> "$results/tool.txt"
done
tool_count=$(( $(wc -l < "$tool_points") - 1 ))
rm -f "$tool_points"

callgrind_table=""
if [ "${CALLGRIND:-0}" = 1 ]; then
  callgrind_table=$(BUILD_DIR="$build_dir" scripts/bench-callgrind.sh)
fi
printf '%s\n' "$callgrind_table" > "$results/callgrind.md"

cxx=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build_dir/CMakeCache.txt")
flags=$(sed -n 's/^CMAKE_CXX_FLAGS_RELEASE:[A-Z]*=//p' "$build_dir/CMakeCache.txt")
python3 - "$results" "$output" "$("$cxx" --version | head -n 1)" "$flags" "$repetitions" "$min_time" "$tool_count" <<'PY'
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
tool_count = int(sys.argv[7])
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

def row(program, name):
    for r in programs.get(program, []):
        if r["name"] == name:
            return r
    return None

def median(values):
    values = sorted(values)
    n = len(values)
    return values[n // 2] if n % 2 else (values[n // 2 - 1] + values[n // 2]) / 2

lines.append("## The alignment layer")
lines.append("")
lines.append("CPU times are Google Benchmark's medians as above. The machine is shared, so")
lines.append("CPU times of memory-heavy runs also carry cache misses caused by other")
lines.append("processes; the instruction counts (valgrind's callgrind, when measured) do not")
lines.append("depend on the load.")
lines.append("")
lines.append("What the layer does per point: the candidate elements come from a static")
lines.append("R-tree of the elements' bounding boxes (Boost.Geometry, packed once when the")
lines.append("alignment is built), taken nearest box first in rounds of up to 32 into a")
lines.append("fixed buffer, so a point allocates nothing and looks at a handful of elements")
lines.append("whatever the alignment's length. Every element type is evaluated through")
lines.append("constants computed once per element (origin, origin tangent, the sine and")
lines.append("cosine of the turns into the local frames, A^2; a half-sine's products of")
lines.append("pi/L and 1/2R, a cubic parabola's abscissa and denominator 6 R Lx),")
lines.append("bit-identical to the element classes (tests/alignment/test_fast_path.cpp).")
lines.append("")
lines.append("Accuracy of the feet: the exact foot (default) takes Newton steps on the")
lines.append("tangency condition from the station where the element's own search starts")
lines.append("(after its tests for a point before the start or beyond the end) until the")
lines.append("measured point lies less than 1e-7 m along the tangent at the foot (tests")
lines.append("assert below 1 µm); where those steps do not settle well inside the element")
lines.append("(near the centre of curvature, far off, at an end) the element's damped search")
lines.append("is run and continued by Newton steps. The element foot")
lines.append("(`ProjectionAccuracy::Element`) stops within 0.4 mm along the tangent on a")
lines.append("transition. Straights and arcs are exact either way.")
lines.append("")
lines.append("### Stationing cost against the number of elements (`bench_alignment_scaling`)")
lines.append("")
lines.append("`HorizontalAlignment::Project` on one thread for the sample's 3,004 measured")
lines.append("points, against the sample's 17 elements repeated end to end and cut at 20,")
lines.append("200, 2,000 and 20,000 elements; each point is moved into a copy of the sample")
lines.append("picked by a fixed scramble of its number, so every alignment sees the same")
lines.append("points in the same neighbourhoods at the same offsets, spread over its whole")
lines.append("length, in the least cache-friendly order; the next columns take the same")
lines.append("points copy after copy, as a survey along the line lists them; the last ones")
lines.append("put every point into every copy, copy after copy, so that each element's")
lines.append("neighbourhood holds as many points as on the sample (3,004 points a copy:")
lines.append("3,004 at 20 elements, 3.5 million at 20,000).")
lines.append("")
lines.append("| elements | exact foot, CPU per point | ratio to 20 | element foot, CPU per point | ratio to 20 | exact foot, points in the order of the line | ratio to 20 | exact foot, every point in every copy | ratio to 20 |")
lines.append("|---|---|---|---|---|---|---|---|---|")
base = {}
for n in (20, 200, 2000, 20000):
    cells = []
    for acc, order in ((0, 0), (1, 0), (0, 1), (0, 2)):
        r = row("bench_alignment_scaling", "BM_Alignment_StationCost/%d/%d/%d" % (n, acc, order))
        if r is None or not r["items"]:
            cells += ["not measured", ""]
            continue
        per = 1e9 / r["items"]
        base.setdefault((acc, order), per)
        cells += [fmt(per), "%.2f" % (per / base[(acc, order)])]
    lines.append("| %d | %s |" % (n, " | ".join(cells)))
lines.append("")
with open(os.path.join(results, "callgrind.md")) as f:
    callgrind = f.read().strip()
if callgrind:
    lines.append("The same runs counted by `scripts/bench-callgrind.sh` (one pass over the 3,004")
    lines.append("points under callgrind with its cache simulation, counting inside `Project` only):")
    lines.append("")
    lines.extend(callgrind.splitlines())
    lines.append("")

lines.append("### LandXML import against the number of elements (`bench_alignment_scaling`)")
lines.append("")
lines.append("`ReadLandXml` of a file holding the same chains (Line, Curve and Spiral nodes")
lines.append("with their start and end points; no profile), from the file to the built")
lines.append("`Alignment` with its prepared elements and spatial index.")
lines.append("")
lines.append("| elements | CPU time | per element | ratio per element to 20 |")
lines.append("|---|---|---|---|")
first = None
for n in (20, 200, 2000, 20000):
    r = row("bench_alignment_scaling", "BM_Alignment_ImportLandXml/%d" % n)
    if r is None:
        lines.append("| %d | not measured | | |" % n)
        continue
    per = r["cpu"] / n
    first = first or per
    lines.append("| %d | %s | %s | %.2f |" % (n, fmt(r["cpu"]), fmt(per), per / first))
lines.append("")

lines.append("### Point and foot per call and element type (`bench_alignment_elements`)")
lines.append("")
lines.append("One element each, 64 stations over it, measured points 2.5 m either side.")
lines.append("*prepared*: the alignment layer (`ElementPoint`, `ElementFoot`) with the")
lines.append("constants computed once; *literal*: the zelmath element class per call;")
lines.append("*bare*: the same four-term clothoid series with the same `std::pow` calls in")
lines.append("bare doubles, constants precomputed, no dispatch (checked to give the same")
lines.append("point); *Horner*: the series by multiplications instead of `pow` (not")
lines.append("bit-identical to the element class, so not usable by the layer; shows what the")
lines.append("`pow` calls cost). The bare foot is Newton on the tangency condition to 1e-7 m.")
lines.append("")
lines.append("| element | point: prepared | literal | bare | prepared / bare | Horner | foot: exact | element foot | literal | bare Newton | exact / bare |")
lines.append("|---|---|---|---|---|---|---|---|---|---|---|")
for k in range(7):
    def cpu(name):
        r = row("bench_alignment_elements", name)
        return None if r is None else r["cpu"]
    def cell(v):
        return "–" if v is None else fmt(v)
    def ratio(a, b):
        return "–" if a is None or b is None else "**%.2f**" % (a / b)
    label = (row("bench_alignment_elements", "BM_Alignment_PointAt/%d" % k) or {}).get("label", str(k))
    p, pl = cpu("BM_Alignment_PointAt/%d" % k), cpu("BM_Alignment_PointAtLiteral/%d" % k)
    pb, ph = cpu("BM_Bare_ClothoidPoint/%d" % k), cpu("BM_Bare_ClothoidPointHorner/%d" % k)
    fe, fo = cpu("BM_Alignment_Foot/%d/0" % k), cpu("BM_Alignment_Foot/%d/1" % k)
    fl, fb = cpu("BM_Alignment_FootLiteral/%d" % k), cpu("BM_Bare_ClothoidFoot/%d" % k)
    lines.append("| %s | %s | %s | %s | %s | %s | %s | %s | %s | %s | %s |" % (
        label, cell(p), cell(pl), cell(pb), ratio(p, pb), cell(ph), cell(fe), cell(fo), cell(fl), cell(fb),
        ratio(fe, fb)))
lines.append("")

lines.append("### Tool throughput against threads (`zel station`)")
lines.append("")
lines.append("`zel station data/sample/alignment.xml` on %d points made from the sample's" % tool_count)
lines.append("by `scripts/bench-points.py` (each copy moved by up to 5 cm), output to")
lines.append("/dev/null: reading, stationing with exact feet, profile and tunnel metres,")
lines.append("formatting and writing; %s runs each, medians. CPU time is user plus system" % repetitions)
lines.append("time of the process (`/usr/bin/time`), summed over its threads, so *points/s")
lines.append("per core* is the number of points over the CPU time. Wall time depends on what")
lines.append("else the machine runs: the load average before the runs is given beside it.")
lines.append("With several threads the main thread reads the next batch of 8,192 points")
lines.append("while a pool of worker threads (`--threads` of them, kept for the whole run)")
lines.append("stations and formats the last in chunks, taken as the workers come free,")
lines.append("and the main thread writes the chunks in order. When the")
lines.append("load average is near or above the number of cores, no core is free for a")
lines.append("second thread and the wall times cannot show the scaling: the CPU times then")
lines.append("show what the threads cost in all, and the instruction counts above bound the")
lines.append("wall time on idle cores.")
lines.append("")
lines.append("| threads | CPU time | points/s per core (CPU) | wall time | points/s (wall) | load average before |")
lines.append("|---|---|---|---|---|---|")
runs = {}
with open(os.path.join(results, "tool.txt")) as f:
    for line in f:
        parts = line.split()
        if len(parts) >= 4 and parts[0].isdigit():
            load = float(parts[4]) if len(parts) >= 5 else float("nan")
            runs.setdefault(int(parts[0]), []).append((float(parts[1]) + float(parts[2]), float(parts[3]), load))
side_by_side = []
with open(os.path.join(results, "tool.txt")) as f:
    for line in f:
        parts = line.split()
        if len(parts) == 2 and parts[0] == "pair":
            side_by_side.append(float(parts[1]))
for threads in sorted(runs):
    cpu_s = median([c for c, _, _ in runs[threads]])
    wall_s = median([w for _, w, _ in runs[threads]])
    load = median([l for _, _, l in runs[threads]])
    lines.append("| %d | %.2f s | %.0f | %.2f s | %.0f | %.2f |" % (
        threads, cpu_s, tool_count / cpu_s if cpu_s > 0 else 0, wall_s,
        tool_count / wall_s if wall_s > 0 else 0, load))
lines.append("")
if side_by_side and 1 in runs:
    single = median([w for _, w, _ in runs[1]])
    pair = median(side_by_side)
    lines.append("Cores free for these runs: two one-thread runs side by side took %.2f s against" % pair)
    lines.append("%.2f s for one alone, so the machine had %.2f cores to give them (2.00 on two" % (single, 2 * single / pair))
    lines.append("idle cores).")
    lines.append("")

lines.append("Numbers and rows read and written by the tool (`bench_tool_io`), per number")
lines.append("or point: the tool's own reading (`ParseDecimal`: one exact multiplication or")
lines.append("division for up to 19 digits and a power of ten up to 22, else")
lines.append("`std::from_chars`) and writing (`AppendFixed`: integer digits of the rounded")
lines.append("scaled value, `std::to_chars` near a tie) against the standard library's")
lines.append("conversions, which they match bit for bit and byte for byte (checked before")
lines.append("measuring, and in tests/alignment/test_points_csv.cpp and")
lines.append("tests/cli/test_format.cpp).")
lines.append("")
lines.append("| operation | the tool | standard library | ratio |")
lines.append("|---|---|---|---|")
def io_cpu(name):
    r = row("bench_tool_io", name)
    return None if r is None or not r["items"] else 1e9 / r["items"]
for title, ours, theirs in (("reading a coordinate", "BM_Tool_ParseDecimal", "BM_Tool_FromChars"),
                            ("writing with 4 decimals", "BM_Tool_AppendFixed/4", "BM_Tool_ToCharsFixed/4"),
                            ("writing with 6 decimals", "BM_Tool_AppendFixed/6", "BM_Tool_ToCharsFixed/6")):
    a, b = io_cpu(ours), io_cpu(theirs)
    if a is None or b is None:
        lines.append("| %s | not measured | | |" % title)
    else:
        lines.append("| %s | %s | %s | %.2f |" % (title, fmt(a), fmt(b), a / b))
rp = io_cpu("BM_Tool_ReadPoints")
if rp is not None:
    lines.append("| reading a row of the points file (`PointsCsvReader`, from memory) | %s | – | – |" % fmt(rp))
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
    "bench_alignment_scaling": "Alignment layer against the number of elements",
    "bench_alignment_elements": "Alignment layer per call and element type",
    "bench_tool_io": "The tool's reading and writing of numbers and rows",
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
            unit = "numbers or rows/s" if program == "bench_tool_io" else "points/s"
            note = (note + "; " if note else "") + "%.0f %s" % (r["items"], unit)
        lines.append("| `%s` | %s | %s | %s |" % (r["name"], fmt(r["cpu"]), fmt(r["real"]), note))
lines.append("")
with open(output, "w") as f:
    f.write("\n".join(lines))
print("wrote", output)
PY
