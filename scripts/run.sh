#!/usr/bin/env bash
# Installs what is missing, builds (release), and starts the monitor with two simulated
# welders, an SPC database and sampling on: the demonstration of scripts/demo.sh.
# Arguments go to corvane-monitor (for example --lang de).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)"

exec scripts/demo.sh "$@"
