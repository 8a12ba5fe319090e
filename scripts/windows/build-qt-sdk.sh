#!/usr/bin/env bash
# Builds the Qt 6.4.2 SDK for Windows x86_64 (MinGW-w64, shared, release) from Debian 12's
# own sources, for a machine without the prebuilt tarball: qtbase with the SQLite driver,
# then qtserialport and qtsvg. Produces qt6.4.2-mingw-w64-x86_64.tar.xz (top folder
# qt6-mingw/) in the output folder; point CORVANE_QT_MINGW at it. About 20 minutes and
# 3 GB of scratch space on 2 cores.
#
#   scripts/windows/build-qt-sdk.sh [OUTPUT_DIR]      (default: build/qt-sdk)
set -euo pipefail
cd "$(dirname "$0")/../.."
source_dir=$PWD

out=$(realpath -m "${1:-build/qt-sdk}")
work=$out/work
prefix=$out/qt6-mingw
jobs=${JOBS:-$(nproc)}
mkdir -p "$work"

sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)

echo "== Build tools and the Debian sources"
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends \
    dpkg-dev cmake ninja-build tcl g++-mingw-w64-x86-64-posix mingw-w64 qt6-base-dev \
    qt6-base-dev-tools perl python3 xz-utils
if ! grep -rqs '^deb-src .*bookworm' /etc/apt/sources.list /etc/apt/sources.list.d/; then
    echo "deb-src http://deb.debian.org/debian bookworm main" |
        "${sudo_cmd[@]}" tee /etc/apt/sources.list.d/corvane-qt-sdk-src.list >/dev/null
    "${sudo_cmd[@]}" apt-get update -qq
fi
cd "$work"
for package in qt6-base qt6-serialport qt6-svg sqlite3 wine; do
    if ! compgen -G "${package}-[0-9]*/" >/dev/null; then
        apt-get source -qq "$package"
    fi
done
qtbase=$(compgen -G "qt6-base-[0-9]*/" | head -n1)
serialport=$(compgen -G "qt6-serialport-[0-9]*/" | head -n1)
svg=$(compgen -G "qt6-svg-[0-9]*/" | head -n1)
sqlite=$(compgen -G "sqlite3-[0-9]*/" | head -n1)
wine=$(compgen -G "wine-[0-9]*/" | head -n1)

echo "== The third-party folders that the +dfsg tarball leaves out"
# SQLite: the amalgamation that Qt's SQLite driver compiles in.
if [ ! -f "$qtbase/src/3rdparty/sqlite/sqlite3.c" ]; then
    (cd "$sqlite" && ./configure >/dev/null && make sqlite3.c >/dev/null)
    mkdir -p "$qtbase/src/3rdparty/sqlite"
    cp "$sqlite/sqlite3.c" "$sqlite/sqlite3.h" "$qtbase/src/3rdparty/sqlite/"
fi
# Wintab: the tablet headers, from wine's, with the few wine macros they use.
if [ ! -f "$qtbase/src/3rdparty/wintab/wintab.h" ]; then
    mkdir -p "$qtbase/src/3rdparty/wintab"
    cat >"$qtbase/src/3rdparty/wintab/wine_names.h" <<'EOF'
#pragma once
#include <windows.h>
#ifdef UNICODE
#define WINELIB_NAME_AW(name) name##W
#else
#define WINELIB_NAME_AW(name) name##A
#endif
#define DECL_WINELIB_TYPE_AW(type) typedef WINELIB_NAME_AW(type) type;
#define API WINAPI
EOF
    { echo '#include "wine_names.h"'; cat "$wine/include/wintab.h"; } \
        >"$qtbase/src/3rdparty/wintab/wintab.h"
    cp "$wine/include/pktdef.h" "$qtbase/src/3rdparty/wintab/"
fi

echo "== qtbase"
toolchain=$source_dir/cmake/windows/mingw-w64-x86_64.cmake
cmake -G Ninja -S "$qtbase" -B "$work/build-qtbase" \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_INSTALL_PREFIX="$prefix" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR=/usr/lib/x86_64-linux-gnu/cmake \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=ON -DQT_BUILD_EXAMPLES=OFF \
    -DQT_BUILD_TESTS=OFF -DFEATURE_opengl=OFF -DINPUT_opengl=no -DFEATURE_dbus=OFF \
    -DFEATURE_sql_sqlite=ON -DFEATURE_system_sqlite=OFF -DFEATURE_sql_psql=OFF \
    -DFEATURE_sql_odbc=OFF -DFEATURE_sql_mysql=OFF -DFEATURE_sql_oci=OFF \
    -DFEATURE_sql_db2=OFF -DFEATURE_sql_ibase=OFF -DFEATURE_testlib=ON \
    -DFEATURE_printsupport=OFF -DFEATURE_vulkan=OFF -DFEATURE_zstd=OFF \
    -DFEATURE_androiddeployqt=OFF
# Direct2D stays on: qwindows.dll does not link without it.
cmake --build "$work/build-qtbase" -j "$jobs"
cmake --install "$work/build-qtbase"

# The toolchain of the SDK, kept inside it, so that it works from any folder.
cp "$toolchain" "$prefix/lib/cmake/mingw-w64-x86_64.cmake"

for module in "$serialport" "$svg"; do
    name=$(basename "$module")
    echo "== $name"
    cmake -G Ninja -S "$module" -B "$work/build-$name" \
        -DCMAKE_TOOLCHAIN_FILE="$prefix/lib/cmake/Qt6/qt.toolchain.cmake" \
        -DQT_CHAINLOAD_TOOLCHAIN_FILE="$prefix/lib/cmake/mingw-w64-x86_64.cmake" \
        -DQT_HOST_PATH=/usr -DCMAKE_INSTALL_PREFIX="$prefix" \
        -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF
    cmake --build "$work/build-$name" -j "$jobs"
    cmake --install "$work/build-$name"
done

cp "$source_dir/scripts/windows/wine-run.sh" "$prefix/bin/"

echo "== Packing"
tar -C "$out" -cJf "$out/qt6.4.2-mingw-w64-x86_64.tar.xz" qt6-mingw
echo "Done: $out/qt6.4.2-mingw-w64-x86_64.tar.xz (export CORVANE_QT_MINGW=$prefix to use it as is)"
