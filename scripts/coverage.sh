#!/usr/bin/env bash
# Line and branch coverage of src/ by the suites: builds the coverage preset (g++
# --coverage, unoptimised), runs every suite once with a throwaway PostgreSQL server, and
# writes the summary to standard output and an HTML report to build/coverage/html/.
#
#   scripts/coverage.sh [CTEST_ARGUMENTS...]
set -euo pipefail
cd "$(dirname "$0")/.."

export QT_QPA_PLATFORM=offscreen
build=build/coverage
cmake --preset coverage >/dev/null
cmake --build --preset coverage -j "${CORVANE_JOBS:-2}"
find "$build" -name '*.gcda' -delete
scripts/with-postgres.sh scripts/with-mosquitto.sh ctest --preset coverage -j "${CORVANE_JOBS:-2}" "$@" ||
    echo "Some suites failed: the coverage below counts what ran." >&2
mkdir -p "$build/html"
# Only the program's own sources count; generated moc and resource files do not.
gcovr --root . --object-directory "$build" --filter 'src/' --exclude '.*_autogen/.*' \
    --exclude-throw-branches --exclude-unreachable-branches --print-summary \
    --html-details "$build/html/index.html"
