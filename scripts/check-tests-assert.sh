#!/usr/bin/env bash
# Fails when a test case checks nothing: every TEST, TEST_F and TEST_P body in
# the test sources must contain at least one EXPECT_ or ASSERT_, or a call of
# one of the tests' own checking helpers, whose names begin with Expect
# (ExpectNear, ExpectMarker, ExpectSameFromManyThreads, ...). A simple scan,
# not a parser: a case runs from its TEST line to the next TEST line or the end
# of the file.
#
# Usage: scripts/check-tests-assert.sh [directory...]   (default: tests)
set -euo pipefail
cd "$(dirname "$0")/.."

dirs=("$@")
[ ${#dirs[@]} -gt 0 ] || dirs=(tests)

status=0
while IFS= read -r -d '' file; do
  if ! awk -v file="$file" '
    function finish() {
      if (name != "" && !checked) {
        printf "%s:%d: test case %s asserts nothing\n", file, line, name
        bad = 1
      }
    }
    /^[[:space:]]*(TEST|TEST_F|TEST_P)[[:space:]]*\(/ {
      finish()
      name = $0
      sub(/^[[:space:]]*/, "", name)
      sub(/\).*/, ")", name)
      line = FNR
      checked = 0
    }
    /(EXPECT|ASSERT)_[A-Z_0-9]+[[:space:]]*\(/ { checked = 1 }
    /(^|[^A-Za-z0-9_])Expect[A-Z][A-Za-z0-9_]*[[:space:]]*(<[^>]*>)?[[:space:]]*\(/ { checked = 1 }
    END { finish(); exit bad }
  ' "$file"; then
    status=1
  fi
done < <(find "${dirs[@]}" -name '*.cpp' -print0 | sort -z)

if [ $status -ne 0 ]; then
  echo "check-tests-assert: test cases without EXPECT_/ASSERT_ found" >&2
fi
exit $status
