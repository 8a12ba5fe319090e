#!/bin/sh
# Runs a Windows executable of the cross-build under wine, with the Qt SDK's bin/ (this
# script's folder once installed there) and the MinGW runtime on wine's DLL path, on the
# offscreen platform. Wine passes no Unix variable named QT_* to a Windows program but
# hands WINEQT_x on as QT_x, so every QT_* variable is passed that way.
here=$(cd "$(dirname "$0")" && pwd)
: "${WINEPREFIX:=${TMPDIR:-/tmp}/wine-qt6-mingw-$(id -u)}"
: "${WINEDEBUG:=-all}"
: "${QT_QPA_PLATFORM:=offscreen}"
# Without a console Qt's messages would go to the debugger output only.
: "${QT_FORCE_STDERR_LOGGING:=1}"
export WINEPREFIX WINEDEBUG QT_QPA_PLATFORM QT_FORCE_STDERR_LOGGING
# The offscreen platform on Windows finds fonts only in the folder named here.
if [ -z "${QT_QPA_FONTDIR:-}" ] && [ -d /usr/share/fonts/truetype/dejavu ]; then
    QT_QPA_FONTDIR='Z:\usr\share\fonts\truetype\dejavu'
    export QT_QPA_FONTDIR
fi
for v in $(env | sed -n 's/^\(QT_[A-Za-z0-9_]*\)=.*/\1/p'); do
    eval "export WINE$v=\"\$$v\""
done
WINEPATH="Z:$(echo "$here" | tr / '\\');Z:\\usr\\lib\\gcc\\x86_64-w64-mingw32\\12-posix;Z:\\usr\\x86_64-w64-mingw32\\lib${WINEPATH:+;$WINEPATH}"
export WINEPATH
exec /usr/lib/wine/wine64 "$@"
