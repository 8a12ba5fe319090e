#!/usr/bin/env bash
# Checks the Windows zip: everything a plant needs is in it, and its programs run under
# wine from the unpacked folder alone, with no Qt or MinGW folder on the DLL path; the
# SPC tool makes an SQLite database, which needs the deployed SQL driver plugin.
set -euo pipefail

zip=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
python3 -m zipfile -e "$zip" .
top=$(basename "$zip" .zip)
cd "$top"

missing=0
for f in corvane-monitor.exe corvane-decode.exe corvane-spc.exe Qt6Core.dll Qt6Widgets.dll \
         Qt6Sql.dll Qt6SerialPort.dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll \
         platforms/qwindows.dll sqldrivers/qsqlite.dll styles/qwindowsvistastyle.dll \
         corvane-monitor.Help.Map contents.html getting-started.html corvane-monitor.de.lang; do
    if [ ! -e "$f" ]; then
        echo "zip lacks $f" >&2
        missing=1
    fi
done
[ "$missing" -eq 0 ]

export WINEPATH= WINEDEBUG=-all
/usr/lib/wine/wine64 corvane-monitor.exe --help | grep -q "Usage: corvane-monitor"
/usr/lib/wine/wine64 corvane-spc.exe init --dsn spc.db
/usr/lib/wine/wine64 corvane-spc.exe add-part "Housing 7" --dsn spc.db
/usr/lib/wine/wine64 corvane-spc.exe list parts --dsn spc.db | grep -q "Housing 7"
echo "$(basename "$zip"): $(find . -type f | wc -l) files, $(du -sh . | cut -f1) unpacked; runs on its own"
