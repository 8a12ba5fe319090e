#!/usr/bin/env bash
# Prints where the Qt SDK for MinGW-w64 is (an unpacked folder or its tarball) and exits
# 0; exits 1 with the reason on standard error when there is none. The places, in order:
# CORVANE_QT_MINGW, the unpacked copy in the cache folder, ../shared/windows/ beside the
# checkout.
set -euo pipefail
cd "$(dirname "$0")/../.."

archive=qt6.4.2-mingw-w64-x86_64.tar.xz
cached="${XDG_CACHE_HOME:-$HOME/.cache}/corvane/qt6-mingw"
for candidate in "${CORVANE_QT_MINGW:-}" "$cached" "../shared/windows/$archive"; do
    if [ -n "$candidate" ] && [ -e "$candidate" ]; then
        echo "$candidate"
        exit 0
    fi
done
echo "no Qt SDK for MinGW-w64: CORVANE_QT_MINGW is not set, $cached and" \
     "../shared/windows/$archive do not exist (scripts/windows/build-qt-sdk.sh builds one)" >&2
exit 1
