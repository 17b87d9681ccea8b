#!/usr/bin/env bash
# Load-independent cost of stationing against the length of the alignment:
# runs one iteration of BM_Alignment_StationCost (bench/bench_alignment_scaling.cpp)
# under valgrind's callgrind with its cache simulation, counting only inside
# HorizontalAlignment::Project, and prints instructions and simulated
# last-level cache misses per point for each element count and accuracy.
# Instruction counts do not depend on what else the machine runs; wall and
# CPU times on a shared machine do.
#
#   scripts/bench-callgrind.sh          (after scripts/bench.sh has built build-bench)
#
#   BUILD_DIR   build folder with the benchmarks (default: build-bench)
#   POINTS      measured points per run (default: 3004, the sample's)
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
      "$program" --benchmark_filter="BM_Alignment_StationCost/$n/$accuracy\$" \
      --benchmark_min_time=0.000001 --benchmark_repetitions=1 >/dev/null 2>&1
    # The totals line of callgrind's own summary: Ir ... ILmr DLmr DLmw.
    read -r ir ilmr dlmr dlmw < <(callgrind_annotate --show=Ir,ILmr,DLmr,DLmw "$out/cg" 2>/dev/null |
      awk '/PROGRAM TOTALS/ { gsub(/\([^)]*\)/, ""); gsub(",", ""); gsub(/ \. /, " 0 ");
                              print $1, $2, $3, ($4 == "." || $4 == "PROGRAM") ? 0 : $4; exit }')
    awk -v n="$n" -v a="$name" -v ir="$ir" -v m="$((ilmr + dlmr + dlmw))" -v p="$points" \
      'BEGIN { printf "| %d | %s | %.0f | %.2f |\n", n, a, ir / p, m / p }'
  done
done
