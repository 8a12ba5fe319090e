#pragma once

#include "platform/ErrorReport.h"

#include <QList>
#include <QString>

// An error report that keeps what it is shown, for tests to inspect.
class RecordingErrorReport : public ErrorReport
{
public:
    struct Report
    {
        QString location;
        qint32 number;
        QString description;
        QString source;
    };

    void Show(const QString &location, qint32 number, const QString &description,
              const QString &source) override
    {
        reports.append({location, number, description, source});
    }

    bool isEmpty() const { return reports.isEmpty(); }
    int count() const { return int(reports.size()); }
    const Report &last() const { return reports.constLast(); }

    QList<Report> reports;
};
