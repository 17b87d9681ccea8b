#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under AddressSanitizer and
# UndefinedBehaviorSanitizer, replays each target's seed corpus and then fuzzes
# each target for a while.
#
#   scripts/fuzz.sh [seconds] [target...]
#
#   seconds   fuzzing time per target (default 60; 0 only replays the corpus)
#   target    names such as fuzz_line or line (default: every target built)
#
#   BUILD_DIR build folder (default: build-fuzz)
#   ZEL_CMAKE_ARGS  extra arguments for the CMake configure step
#
# New inputs found while fuzzing go to <build>/fuzz-corpus/<target>/, crashes
# and hangs to <build>/fuzz-artifacts/; the seed corpus in fuzz/corpus/ is only
# read. A crash becomes a regression test by adding its input to the seed
# corpus (and a unit test in tests/robustness/).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
shift || true
build_dir=${BUILD_DIR:-build-fuzz}

scripts/setup.sh
# shellcheck disable=SC2086
CXX=clang++ cmake -S . -B "$build_dir" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DZEL_WARNINGS_AS_ERRORS=ON -DZEL_SANITIZE=address,undefined -DZEL_BUILD_FUZZERS=ON \
  -DZEL_BUILD_TESTS=OFF -DZEL_BUILD_EXAMPLES=OFF ${ZEL_CMAKE_ARGS:-} >/dev/null
cmake --build "$build_dir" -j "$(nproc)" --target fuzzers

if [ $# -gt 0 ]; then
  targets=()
  for t in "$@"; do targets+=("fuzz_${t#fuzz_}"); done
else
  mapfile -t targets < <(find "$build_dir/fuzz" -maxdepth 1 -type f -name 'fuzz_*' -perm -u+x -printf '%f\n' | sort)
fi

export ASAN_OPTIONS=${ASAN_OPTIONS:-abort_on_error=1:detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
artifacts="$build_dir/fuzz-artifacts"
mkdir -p "$artifacts"

for target in "${targets[@]}"; do
  name=${target#fuzz_}
  binary="$build_dir/fuzz/$target"
  seeds="fuzz/corpus/$name"
  [ -x "$binary" ] || { echo "no fuzz target $target in $build_dir" >&2; exit 1; }
  [ -d "$seeds" ] || { echo "no seed corpus $seeds" >&2; exit 1; }

  echo "== $target: replaying $(find "$seeds" -type f | wc -l) seed inputs"
  # Each seed runs once; a crash, a sanitizer report or a hang fails the script.
  log="$artifacts/$target.log"
  # shellcheck disable=SC2046
  if ! "$binary" -timeout=10 -artifact_prefix="$artifacts/$target-" $(find "$seeds" -type f | sort) >"$log" 2>&1; then
    cat "$log"; echo "$target failed on its seed corpus" >&2; exit 1
  fi

  if [ "$seconds" -gt 0 ]; then
    echo "== $target: fuzzing for $seconds s"
    work="$build_dir/fuzz-corpus/$name"
    mkdir -p "$work"
    max_len=512
    case "$name" in
    alignment_* | points_*) max_len=16384 ;;
    station_map) max_len=2048 ;; # several elements with their curves
    esac
    "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len="$max_len" \
      -print_final_stats=1 -artifact_prefix="$artifacts/$target-" "$work" "$seeds" >"$log" 2>&1 || {
      cat "$log"; echo "$target failed while fuzzing; the input is in $artifacts" >&2; exit 1
    }
    grep -E '^(Done|stat::(number_of_executed_units|new_units_added|slowest_unit_time_sec))' "$log" || true
  fi
done
echo "fuzzing passed"
