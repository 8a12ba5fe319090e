#!/usr/bin/env bash
# Installs what is missing, builds, and shows the program at work: a simulated power
# supply's capture decoded into data-log lines.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)"

demo=${CORVANE_DEMO_DIR:-demo}
mkdir -p "$demo"
build/release/tools/sim/corvane-sim --output "$demo/capture.bin" --count 20 --seed 7
build/release/tools/decode/corvane-decode "$demo/capture.bin" | tee "$demo/capture.txt"
echo "Decoded $(( $(wc -l < "$demo/capture.txt") - 1 )) welds into $demo/capture.txt"
