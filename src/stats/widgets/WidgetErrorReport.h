#pragma once

#include "platform/ErrorReport.h"

// The report a statistics widget uses until its owner hands it one: failures are written
// as warnings of the statistics widgets' logging category, so a paint failure is never
// lost and never thrown out of a paint event.
class WidgetErrorReport : public ErrorReport
{
public:
    void Show(const QString &location, qint32 number, const QString &description,
              const QString &source) override;
};
