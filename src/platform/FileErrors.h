#pragma once

#include "ProgramError.h"

class QFileDevice;

// The failure of a file operation as a ProgramError: a number that tells its kind (path
// not found, permission denied, disk full, path/file access error) and the system's
// own description.
ProgramError fileError(const QFileDevice &file, const QString &source);
