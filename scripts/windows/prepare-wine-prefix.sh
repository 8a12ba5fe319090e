#!/bin/sh
# Makes the wine prefix named by WINEPREFIX (once; later runs find it ready) and gives it
# the regional settings of the Linux test runs: metric units.
set -e
: "${WINEPREFIX:?names the wine prefix}"
export WINEDEBUG=-all
/usr/lib/wine/wine64 wineboot --init >/dev/null 2>&1
/usr/lib/wine/wine64 reg add 'HKCU\Control Panel\International' /v iMeasure /d 0 /f >/dev/null
