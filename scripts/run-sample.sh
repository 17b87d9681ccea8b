#!/usr/bin/env bash
# Sets up what is missing, builds the project and runs the main job on the
# shipped sample: the classification of a few transition elements.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
build_dir=${BUILD_DIR:-build}
cmake -S . -B "$build_dir" -DZEL_BUILD_EXAMPLES=ON >/dev/null
cmake --build "$build_dir" -j "$(nproc)" --target classify_transitions
"$build_dir"/examples/classify_transitions
