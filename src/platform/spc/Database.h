#pragma once

#include "ControlLimitRecord.h"
#include "Records.h"
#include "Subgroup.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

namespace qlaDatabase6 {

// One stored value of a subgroup with everything that identifies it, as reports list
// them.
struct StoredValue
{
    qint64 subgroupId = 0;
    SubgroupHeader header;
    QString testItem;
    int kind = TestItem::kMeasuredValue;
    qint32 sampleNumber = 0;
    double value = 0;
    QString text;
};

// Which subgroups a report covers; empty texts and invalid times cover all. With a test
// item, only that item's values are reported.
struct SubgroupFilter
{
    QString part;
    QString process;
    QDateTime since;
    QDateTime until;
    QString testItem;
};

// A monitor's connection to the SPC database. It carries the data source name and the
// connection state; the records and the subgroup are loaded and stored through it.
// Operations other than opening throw a ProgramError on failure (the connection's
// last error text says the same).
class Database : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual QString dataSourceName() const = 0;
    // Takes a new data source; a connection to a different one is closed.
    virtual void setDataSourceName(const QString &dsn) = 0;
    virtual bool isConnected() const = 0;
    // Connects to the data source, creating or bringing forward its tables. Returns
    // whether it is connected; when not, lastErrorText() says why. Emits connected()
    // on success.
    virtual bool openConnection() = 0;
    virtual void closeConnection() = 0;
    virtual QString lastErrorText() const = 0;

    // The schema version the connected database is at.
    virtual int schemaVersion() = 0;

    virtual bool loadRecord(Record &record) = 0;
    virtual bool loadSpecLimit(SpecLimit &limit) = 0;
    // Stores a subgroup in one transaction and returns its identifier. A subgroup whose
    // key the database already holds is not stored again: the identifier it has is
    // returned, so a retried store counts once.
    virtual qint64 storeSubgroup(const Subgroup &subgroup) = 0;

    // Records of a kind whose name contains the filter (any case), by name.
    virtual QList<Record> listRecords(RecordKind kind, const QString &filter = {}) = 0;
    // Creates a record; groupName (parts and processes only) must name an existing
    // group or be empty. Throws when the name is taken or not acceptable.
    virtual Record createRecord(RecordKind kind, const QString &name,
                                const QString &groupName = {}) = 0;

    virtual QList<SpecLimit> listSpecLimits() = 0;
    // Sets the limits of the limit's part and test, replacing those it had.
    virtual void setSpecLimit(const SpecLimit &limit) = 0;
    // Removes them; returns whether there were any.
    virtual bool clearSpecLimit(qint64 partId, qint64 testId) = 0;

    // Every stored value of the subgroups the filter covers, oldest subgroup first,
    // test items in the order they were added, values by sample number.
    virtual QList<StoredValue> subgroupValues(const SubgroupFilter &filter) = 0;

    // Whether a subgroup with this date-time, part, process and source tag is stored.
    virtual bool hasSubgroup(const SubgroupHeader &header) = 0;

    // The limits frozen for a part, process and test; an empty chart type when none.
    virtual ControlLimitRecord controlLimits(const QString &part, const QString &process,
                                             const QString &test) = 0;
    // Freezes limits, moving those they replace into the history, in one transaction.
    virtual void freezeControlLimits(const ControlLimitRecord &limits) = 0;
    // The frozen limits of every characteristic, by part, process and test.
    virtual QList<ControlLimitRecord> listControlLimits() = 0;
    // Limits replaced earlier for a part, process and test, oldest first.
    virtual QList<ControlLimitRecord>
    controlLimitHistory(const QString &part, const QString &process, const QString &test) = 0;

signals:
    void connected();
};

} // namespace qlaDatabase6
