#!/usr/bin/env bash
# Writes the fuzz target's seed corpus: a few small captures of what a welder link can
# carry (good weld records, a frame of another function, a bad end marker, a negative
# length, garbage and a cut-off frame). The weld records come from the simulator of
# BUILD_DIR; their power-supply clock fields hold the time of generation.
#
#   fuzz/make-corpus.sh BUILD_DIR
set -euo pipefail

if [ $# -ne 1 ]; then
  echo "usage: $0 BUILD_DIR" >&2
  exit 2
fi
sim=$1/tools/sim/corvane-sim
if [ ! -x "$sim" ]; then
  echo "$0: no simulator at $sim" >&2
  exit 2
fi
corpus=$(cd "$(dirname "$0")" && pwd)/corpus
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$corpus"

# The simulator writes each 124-byte frame followed by one byte.
"$sim" --output "$work/one.bin" --count 1 --seed 3
"$sim" --output "$work/three-us.bin" --count 3 --seed 5 --us
frame() { head -c 124 "$work/one.bin"; }

cp "$work/one.bin" "$corpus/weld.bin"
cp "$work/three-us.bin" "$corpus/three-welds-us.bin"
frame > "$corpus/weld-no-trailing-byte.bin"
{ printf '\x10\x02\x00\x04\x00\x05\xab\xcd\x10\x03'; frame; printf '\x00'; } \
  > "$corpus/other-function.bin"
{ head -c 123 "$work/one.bin"; printf '\x55'; cat "$work/three-us.bin"; } \
  > "$corpus/bad-end-marker.bin"
{ printf '\x10\x03\x10\x02\xff\xfa\x00\x05\x01\x02\x03\x04'; frame; printf '\x00'; } \
  > "$corpus/negative-length.bin"
{ printf '\x33\x10\x10\x03\x02\xff\x10'; frame; printf '\x10\x10\x02'; } > "$corpus/garbage.bin"
{ frame; printf '\x00'; head -c 60 "$work/one.bin"; } > "$corpus/cut-off.bin"

ls -l "$corpus"
