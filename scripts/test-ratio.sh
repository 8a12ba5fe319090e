#!/usr/bin/env bash
# Prints the size of the suites against the size of the program and fails when the
# suites outgrow it: non-blank lines that do not start with // in the .h and .cpp files
# of tests/, against those of src/ and tools/. The limit is a ratio, 0.40 unless
# CORVANE_TEST_RATIO_LIMIT says otherwise.
set -euo pipefail
cd "$(dirname "$0")/.."

limit=${CORVANE_TEST_RATIO_LIMIT:-0.40}

count() {
    find "$@" \( -name '*.h' -o -name '*.cpp' \) -print0 |
        xargs -0 cat | grep -cvE '^[[:space:]]*(//|$)'
}

tests=$(count tests)
product=$(count src tools)
ratio=$(awk -v t="$tests" -v p="$product" 'BEGIN { printf "%.2f", t / p }')
echo "Test lines: ${tests} against ${product} lines of program: ratio ${ratio} (limit ${limit})"
if awk -v t="$tests" -v p="$product" -v l="$limit" 'BEGIN { exit !(t / p > l) }'; then
    echo "The suites are larger than ${limit} of the program: merge or cut cases first." >&2
    exit 1
fi
