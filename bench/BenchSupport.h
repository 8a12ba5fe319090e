#pragma once

#include "platform/ErrorReport.h"

#include <QByteArray>

// What the benchmarks share: the one application object a Qt program needs, and an
// error report that only counts.

// Creates the application of type Application once; widget benchmarks draw on the
// offscreen platform unless another is chosen.
template <typename Application> void ensureApplication()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "bench";
    static char *argv[] = {name, nullptr};
    static Application application(argc, argv);
}

class CountingErrorReport : public ErrorReport
{
public:
    void Show(const QString &, qint32, const QString &, const QString &) override { ++count; }
    qint64 count = 0;
};
