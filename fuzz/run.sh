#!/usr/bin/env bash
# Runs the fuzz targets for SECONDS in all: the frame parser gets half of the time, the
# other targets share the rest. Each runs on a scratch copy of its seeds (fuzz/corpus for
# the parser, fuzz/corpus-NAME for target fuzz_NAME where there is one), so the committed
# seeds stay as they are. An input that crashes, trips a sanitizer, hangs or breaks a
# target's own checks is kept in fuzz/crashes/ and the script fails.
#
#   fuzz/run.sh BUILD_DIR SECONDS
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: $0 BUILD_DIR SECONDS" >&2
  exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
if [ ! -x "$1/fuzz/fuzz_parser" ]; then
  echo "$0: no fuzz target at $1/fuzz/fuzz_parser (configure with clang and -DCORVANE_BUILD_FUZZ=ON)" >&2
  exit 2
fi
others=()
for target in "$1"/fuzz/fuzz_*; do
  name=$(basename "$target")
  if [ -x "$target" ] && [ -f "$target" ] && [ "$name" != fuzz_parser ]; then
    others+=("$name")
  fi
done
parser_seconds=$(( $2 / 2 > 0 ? $2 / 2 : 1 ))
other_seconds=$(( ${#others[@]} > 0 ? ($2 - parser_seconds) / ${#others[@]} : 0 ))
[ "$other_seconds" -gt 0 ] || other_seconds=1

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$here/crashes"

build=$1
run() { # name seconds seeds [options...]
  local name=$1 seconds=$2 seeds=$3
  shift 3
  mkdir -p "$work/$name"
  if [ -d "$seeds" ]; then cp "$seeds"/* "$work/$name"/ 2>/dev/null || true; fi
  echo "== $name for $seconds s"
  "$build/fuzz/$name" -max_total_time="$seconds" -timeout=10 -artifact_prefix="$here/crashes/" \
    -print_final_stats=1 "$@" "$work/$name"
}

run fuzz_parser "$parser_seconds" "$here/corpus" -max_len=4096 -dict="$here/parser.dict"
for name in "${others[@]}"; do
  run "$name" "$other_seconds" "$here/corpus-${name#fuzz_}" -max_len=4096
done
