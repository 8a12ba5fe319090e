#pragma once

#include <QByteArray>
#include <QString>

// Replaces the file at path by bytes as a whole or not at all: the bytes go to a
// temporary file in the same folder, which is written, flushed and forced to the disk
// before it is renamed over the target. A failure at any of these steps (a full disk, a
// folder that became read-only) removes the temporary file, leaves the old file as it
// was, and is thrown as a ProgramError with the given source.
void replaceWholeFile(const QString &path, const QByteArray &bytes, const QString &source);
