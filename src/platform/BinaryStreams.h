#pragma once

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <cstdio>
#include <fcntl.h>
#include <io.h>
#endif

// Standard input and output as plain bytes. Windows opens them in text mode, which would
// turn every line end into CR LF (a data-log line, already ended by CR LF, would end in
// CR CR LF) and stop reading a capture at its first 0x1A byte; elsewhere they are bytes
// already.
inline void useBinaryStandardStreams()
{
#ifdef Q_OS_WIN
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#endif
}
