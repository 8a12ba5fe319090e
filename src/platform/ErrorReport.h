#pragma once

#include <QString>

// The error-report service: event procedures hand it the failures that stopped them.
// Implementations must return at once; a report never blocks data capture.
class ErrorReport
{
public:
    virtual ~ErrorReport() = default;

    // location is "Object.Procedure" of the event that failed.
    virtual void Show(const QString &location, qint32 number, const QString &description,
                      const QString &source) = 0;
};
