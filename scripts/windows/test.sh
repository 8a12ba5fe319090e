#!/usr/bin/env bash
# The Windows stage of the test command: cross-builds the programs and the suites chosen
# for wine with MinGW-w64 and the Qt SDK, runs those suites and the headless program
# (against the native build's corvane-sim) under wine, then packs the zip and checks that
# it runs on its own. Needs the native "ci" build for corvane-sim.
set -euo pipefail
cd "$(dirname "$0")/../.."

jobs=${1:-$(nproc)}
build=build/windows-mingw
export WINEPREFIX=$PWD/$build/wine WINEDEBUG=-all

cmake --preset windows-mingw -DCORVANE_HOST_SIM="$PWD/build/ci/tools/sim/corvane-sim" >/dev/null
cmake --build --preset windows-mingw -j "$jobs"

# One wine server for the whole stage, in a prefix made before it starts: each program
# start then costs well under a second instead of about 2.5 s.
scripts/windows/prepare-wine-prefix.sh
/usr/lib/wine/wineserver -w # the server that making the prefix started ends first
/usr/lib/wine/wineserver -p
trap '/usr/lib/wine/wineserver -k || true' EXIT

ctest --preset windows-mingw -j "$jobs"

rm -f "$build"/corvane-monitor_*_win64.zip
(cd "$build" && cpack -G ZIP >/dev/null)
scripts/windows/check-zip.sh "$build"/corvane-monitor_*_win64.zip
