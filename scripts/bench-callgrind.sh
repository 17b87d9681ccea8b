#!/usr/bin/env bash
# Load-independent cost of stationing against the length of the alignment:
# runs one iteration of BM_Alignment_StationCost (bench/bench_alignment_scaling.cpp)
# under valgrind's callgrind with its cache simulation, counting only inside
# HorizontalAlignment::Project, and prints instructions and simulated
# last-level cache misses per point for each element count and accuracy.
# Then where the time of zel station goes, by the same counting.
# Instruction counts do not depend on what else the machine runs; wall and
# CPU times on a shared machine do.
#
#   scripts/bench-callgrind.sh          (after scripts/bench.sh has built build-bench)
#
#   BUILD_DIR   build folder with the benchmarks (default: build-bench)
#   POINTS      measured points per run (default: 3004, the sample's)
#   TOOL_POINTS points of the zel station run (default: 100,000)
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=${BUILD_DIR:-build-bench}
points=${POINTS:-3004}
program="$build_dir/bench/bench_alignment_scaling"
[ -x "$program" ] || { echo "build $program first (scripts/bench.sh)" >&2; exit 1; }
command -v valgrind >/dev/null || { echo "valgrind is needed" >&2; exit 1; }

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
printf '| elements | accuracy | instructions per point | LL misses per point (simulated) |\n'
printf '|---|---|---|---|\n'
for accuracy in 0 1; do
  name=$([ "$accuracy" = 0 ] && echo exact || echo element)
  for n in 20 200 2000 20000; do
    valgrind --tool=callgrind --cache-sim=yes --callgrind-out-file="$out/cg" \
      --toggle-collect='zelalign::HorizontalAlignment::Project*' \
      "$program" --benchmark_filter="BM_Alignment_StationCost/$n/$accuracy/0\$" \
      --benchmark_min_time=0.000001 --benchmark_repetitions=1 >/dev/null 2>&1
    # The totals line of callgrind's own summary: Ir ... ILmr DLmr DLmw.
    read -r ir ilmr dlmr dlmw < <(callgrind_annotate --show=Ir,ILmr,DLmr,DLmw "$out/cg" 2>/dev/null |
      awk '/PROGRAM TOTALS/ { gsub(/\([^)]*\)/, ""); gsub(",", ""); gsub(/ \. /, " 0 ");
                              print $1, $2, $3, ($4 == "." || $4 == "PROGRAM") ? 0 : $4; exit }')
    awk -v n="$n" -v a="$name" -v ir="$ir" -v m="$((ilmr + dlmr + dlmw))" -v p="$points" \
      'BEGIN { printf "| %d | %s | %.0f | %.2f |\n", n, a, ir / p, m / p }'
  done
done

# Where the tool's time goes: zel station on TOOL_POINTS points made by
# scripts/bench-points.py, one thread, under callgrind; instructions of each
# part including what it calls, per point and as a share of the whole run.
zel="$build_dir/tools/zel/zel"
[ -x "$zel" ] || exit 0
scripts/bench-points.py "$out/points.csv" "${TOOL_POINTS:-100000}"
tool_points=$(( $(wc -l < "$out/points.csv") - 1 ))
valgrind --tool=callgrind --callgrind-out-file="$out/zel" "$zel" station data/sample/alignment.xml \
  "$out/points.csv" -o /dev/null --threads 1 >/dev/null 2>&1
callgrind_annotate --inclusive=yes "$out/zel" 2>/dev/null > "$out/zel.txt"
total=$(awk '/PROGRAM TOTALS/ { gsub(",", ""); print $1; exit }' "$out/zel.txt")
printf '\n| part of zel station (%d points, one thread) | instructions per point | share |\n' "$tool_points"
printf '|---|---|---|\n'
count() {  # inclusive count of the first function matching the pattern
  awk -v pat="$1" 'index($0, pat) { gsub(",", ""); print $1; exit }' "$out/zel.txt"
}
share() {  # title, pattern of the function
  local n
  n=$(count "$2")
  awk -v t="$1" -v n="${n:-0}" -v all="$total" -v p="$tool_points" \
    'BEGIN { printf "| %s | %.0f | %.1f %% |\n", t, n / p, 100 * n / all }'
}
share "whole run" "PROGRAM TOTALS"
share "reading the points file (PointsCsvReader::Next)" "zelalign::PointsCsvReader::Next("
share "  of which numbers (ParseDecimal)" "zelalign::ParseDecimal("
share "stationing (Alignment::Station per point)" "zelalign::Alignment::Station(double, double, double"
share "  of which projection (HorizontalAlignment::Project)" "zelalign::HorizontalAlignment::Project("
share "  of which feet on elements (HorizontalAlignment::ElementFoot)" "zelalign::HorizontalAlignment::ElementFoot("
share "  of which tunnel metres (TunnelMetreMap::ToTunnelMetre)" "zelalign::TunnelMetreMap::ToTunnelMetre("
share "  of which design heights (VerticalProfile::HeightAt)" "zelalign::VerticalProfile::HeightAt("
share "formatting numbers (TableWriter::Number)" "zel::TableWriter::Number("
share "formatting text cells (TableWriter::Text)" "zel::TableWriter::Text("
share "handing rows to the output (Output::Write)" "zel::Output::Write("
# With several threads the main thread reads and writes while the stationing
# and formatting of the last batch run on the others. From the counts: the
# share of the run that stays on the main thread, and the bound this leaves
# for the wall time on two idle cores (the larger of half the work, the main
# thread's part and half the rest).
reading=$(count "zelalign::PointsCsvReader::Next(")
writing=$(count "zel::Output::Write(")
awk -v all="$total" -v r="${reading:-0}" -v w="${writing:-0}" 'BEGIN {
  main = r + w; rest = all - main
  two = all / 2
  if (main > two) two = main
  if (rest / 2 > two) two = rest / 2
  printf "\nOn the main thread (reading, writing): %.1f %% of the instructions, the rest\n", 100 * main / all
  printf "on the other threads meanwhile; on two idle cores the run could take %.2f of\n", two / all
  printf "its one-thread wall time (a bound from the counts, not a measurement).\n" }'
