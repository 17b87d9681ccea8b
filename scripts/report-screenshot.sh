#!/usr/bin/env bash
# Makes docs/report.png, the picture of the report in the README: zel report
# on the shipped sample (alignment and measured points), rendered by headless
# Chromium, the top of the page (summary, plan, curvature, profile).
#   BUILD_DIR  build folder (default: build)
#   SCALE      device scale factor of the screenshot (default: 0.8, a small PNG)
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=${BUILD_DIR:-build}
scale=${SCALE:-0.8}
# CSS pixels of the page shown: the report's width, down to the profile.
width=1060
height=1330

chromium=$(command -v chromium || command -v chromium-browser || true)
if [ -z "$chromium" ]; then
  echo "report-screenshot: Chromium is not installed; scripts/setup.sh installs it" >&2
  exit 1
fi

cmake -S . -B "$build_dir" >/dev/null
cmake --build "$build_dir" --target zel -j "$(nproc)"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$build_dir/tools/zel/zel" report data/sample/alignment.xml data/sample/points.csv -o "$work/report.html"
"$chromium" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
  --disable-background-networking --disable-component-update --disable-sync \
  --user-data-dir="$work/profile" --hide-scrollbars --force-device-scale-factor="$scale" \
  --window-size="$width,$height" --screenshot="$work/report.png" "file://$work/report.html" 2>/dev/null
cp "$work/report.png" docs/report.png
echo "docs/report.png: $(stat -c %s docs/report.png) bytes"
