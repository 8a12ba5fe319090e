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

// A connection to an SPC database that is never there: every call that would reach the
// database is counted and fails. Only the data source name, a plain setting of the
// object, is kept.
class CountingDatabase : public qlaDatabase6::Database
{
public:
    QString dataSourceName() const override { return m_dsn; }
    void setDataSourceName(const QString &dsn) override
    {
        m_dsn = dsn;
        ++nameChanges;
    }
    bool isConnected() const override { return count(false); }
    bool openConnection() override { return count(false); }
    void closeConnection() override { count(); }
    QString lastErrorText() const override { return QStringLiteral("no database here"); }
    int schemaVersion() override { return fail(); }
    bool loadRecord(qlaDatabase6::Record &) override { return fail(); }
    bool loadSpecLimit(qlaDatabase6::SpecLimit &) override { return fail(); }
    qint64 storeSubgroup(const qlaDatabase6::Subgroup &) override { return fail(); }
    QList<qlaDatabase6::Record> listRecords(qlaDatabase6::RecordKind, const QString &) override
    {
        return fail(), QList<qlaDatabase6::Record>();
    }
    qlaDatabase6::Record createRecord(qlaDatabase6::RecordKind kind, const QString &,
                                      const QString &) override
    {
        return fail(), qlaDatabase6::Record(kind);
    }
    QList<qlaDatabase6::SpecLimit> listSpecLimits() override
    {
        return fail(), QList<qlaDatabase6::SpecLimit>();
    }
    void setSpecLimit(const qlaDatabase6::SpecLimit &) override { fail(); }
    bool clearSpecLimit(qint64, qint64) override { return fail(); }
    QList<qlaDatabase6::StoredValue> subgroupValues(const qlaDatabase6::SubgroupFilter &) override
    {
        return fail(), QList<qlaDatabase6::StoredValue>();
    }
    bool hasSubgroup(const qlaDatabase6::SubgroupHeader &) override { return fail(); }
    qlaDatabase6::ControlLimitRecord controlLimits(const QString &, const QString &,
                                                   const QString &) override
    {
        return fail(), qlaDatabase6::ControlLimitRecord();
    }
    void freezeControlLimits(const qlaDatabase6::ControlLimitRecord &) override { fail(); }
    QList<qlaDatabase6::ControlLimitRecord> listControlLimits() override
    {
        return fail(), QList<qlaDatabase6::ControlLimitRecord>();
    }
    QList<qlaDatabase6::ControlLimitRecord> controlLimitHistory(const QString &, const QString &,
                                                                const QString &) override
    {
        return fail(), QList<qlaDatabase6::ControlLimitRecord>();
    }

    mutable int calls = 0;
    int nameChanges = 0;

private:
    bool count(bool result = false) const
    {
        ++calls;
        return result;
    }
    int fail() const
    {
        ++calls;
        throw ProgramError::raised(QStringLiteral("no database here"),
                                   QStringLiteral("CountingDatabase"));
    }

    QString m_dsn;
};

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
