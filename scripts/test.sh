#!/usr/bin/env bash
# Sets up what is missing, builds the libraries and every test, and runs them.
#   BUILD_DIR   build folder (default: build)
#   ZEL_CMAKE_ARGS  extra arguments for the CMake configure step
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
build_dir=${BUILD_DIR:-build}
# shellcheck disable=SC2086
cmake -S . -B "$build_dir" -DZEL_BUILD_TESTS=ON -DZEL_BUILD_PYTHON=ON ${ZEL_CMAKE_ARGS:-}
cmake --build "$build_dir" -j "$(nproc)"
ctest --test-dir "$build_dir" --output-on-failure -j "$(nproc)"
