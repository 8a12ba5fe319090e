#!/usr/bin/env bash
# Runs the parser's fuzz target for SECONDS on a scratch copy of the seed corpus, so the
# committed seeds stay as they are. An input that crashes, trips a sanitizer, hangs or
# makes the ways of feeding disagree is kept in fuzz/crashes/ and the script fails.
#
#   fuzz/run.sh BUILD_DIR SECONDS
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: $0 BUILD_DIR SECONDS" >&2
  exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
fuzzer=$1/fuzz/fuzz_parser
if [ ! -x "$fuzzer" ]; then
  echo "$0: no fuzz target at $fuzzer (configure with clang and -DCORVANE_BUILD_FUZZ=ON)" >&2
  exit 2
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$here"/corpus/* "$work"/
mkdir -p "$here/crashes"

"$fuzzer" -max_total_time="$2" -max_len=4096 -timeout=10 -dict="$here/parser.dict" \
  -artifact_prefix="$here/crashes/" -print_final_stats=1 "$work"
