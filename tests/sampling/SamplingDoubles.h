#pragma once

#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"

#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"
#include "platform/spc/Database.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/PartSelector.h"
#include "sampling/SamplingProperties.h"

#include <QList>
#include <QString>
#include <QTemporaryDir>

// The part selection dialog as a user answers it: the part they pick, or a cancel.
class ScriptedPartSelector : public PartSelector
{
public:
    std::optional<QString> choosePart(QObject *, qlaDatabase6::Database &,
                                      const qlaDatabase6::Part &current) override
    {
        preselected.append(current.name());
        preselectedIds.append(current.id());
        return answer;
    }

    std::optional<QString> answer;
    QStringList preselected;
    QList<qint64> preselectedIds;
};

// One monitor's sampling with what surrounds it: the data folder in a temporary folder,
// a clock moved by hand from midnight, recorded error reports and message boxes, and a
// scripted part selection. The database library is looked for as the program does,
// unless the case says whether it loads.
struct SamplingBench
{
    using DatabaseMaker = std::function<std::unique_ptr<qlaDatabase6::Database>()>;

    explicit SamplingBench(
        DatabaseMaker makeDatabase = {},
        DatabaseSupport::DriverCheck driverCheck = &DatabaseSupport::sqlDriversLoad)
        : clock(QDateTime(QDate(2026, 3, 2), QTime(0, 0)))
        , support(errors, ProgramFiles(folder.path()), std::move(driverCheck), flag, {})
        , sampling(SamplingServices{errors, clock, support, boxes, folder.path(),
                                    std::move(makeDatabase), &selector})
    {}

    QTemporaryDir folder;
    ManualClock clock;
    RecordingErrorReport errors;
    RecordingMessageBoxes boxes;
    ScriptedPartSelector selector;
    DatabaseSupport::LibraryFlag flag;
    DatabaseSupport support;
    SamplingProperties sampling;
};
