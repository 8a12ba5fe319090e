#pragma once

#include "platform/spc/Subgroup.h"

#include <QDateTime>
#include <QDomDocument>
#include <QDomElement>
#include <QList>
#include <QObject>
#include <QString>

struct CorvaneFUN26;
class DatasetCollection;
class qlxLanguage;

// A control-chart rule that a newly completed subgroup broke against the limits frozen
// for its characteristic: rules 1 to 8 of the mean (or individuals) chart, or rule 1 of
// the range, standard deviation or moving-range chart.
struct RuleViolation
{
    QString characteristic;
    int rule = 0;
    bool spreadChart = false;
    QDateTime subgroupTime;
    // The plotted point: the subgroup mean (or the spread on the lower chart).
    double value = 0;
    // The centre line and control limits of the chart the point is plotted on.
    double centre = 0;
    double lowerLimit = 0;
    double upperLimit = 0;
};

// What the equipment monitor asks of its SPC sampling object: start and stop a
// collection with the monitor's run, add every weld to the current period, close
// finished periods on every timer tick, and keep its settings in the "Sampling" element
// of the monitor's configuration. Each operation reports its own failures; none of them
// throws to the monitor.
class SamplingSeam : public QObject
{
    Q_OBJECT

public:
    ~SamplingSeam() override = default;

    // True when collection started; false leaves the monitor stopped.
    virtual bool StartCollection(const qlxLanguage &language) = 0;
    virtual void StopCollection(const qlxLanguage &language, const DatasetCollection &datasets) = 0;
    virtual void AddToSample(const qlxLanguage &language, const CorvaneFUN26 &record) = 0;
    virtual void ProcessSamplePeriod(const qlxLanguage &language,
                                     const DatasetCollection &datasets) = 0;
    virtual bool Enabled() const = 0;

    // The "Sampling" element built in document, for the monitor to append to its
    // configuration; a null element when there is nothing to write.
    virtual QDomElement GetXMLNode(QDomDocument &document) = 0;
    // Reads the "Sampling" child of the monitor's "Configuration" element.
    virtual void SetXMLNode(const QDomElement &configuration) = 0;

    // Copies the SPC database's specification limits of the configured part into the
    // datasets of the same name, when sampling is enabled.
    virtual void InitializeSpecificationLimits(DatasetCollection &datasets) = 0;

    // The rule violations of the subgroups completed since the last call, oldest first.
    virtual QList<RuleViolation> takeRuleViolations() { return {}; }

    // The SPC part that subgroups are stored for, shown in the monitor's part box.
    virtual QString Part() const { return {}; }
    // The SPC process that subgroups are stored for.
    virtual QString Process() const { return {}; }
    // The SPC database's data source name and whether it is connected now; no source
    // without SPC sampling.
    virtual QString DataSourceName() const { return {}; }
    virtual bool DataSourceConnected() const { return false; }
    // Lets the engineer choose the SPC part from the database's part list, the chooser
    // belonging to owner's window. True when the part changed. Without SPC sampling
    // there is nothing to choose.
    virtual bool SelectPart(QObject *owner)
    {
        Q_UNUSED(owner)
        return false;
    }

    // Subgroups of this monitor's SPC database that wait in the workstation's outbox
    // because the database could not take them.
    virtual int backlog() const { return 0; }

signals:
    // A period closed and left this subgroup: stored in the database, or queued in the
    // outbox when queued is true.
    void subgroupCompleted(const qlaDatabase6::Subgroup &subgroup, bool queued);
    void backlogChanged(int backlog);
    // The SPC database answers (again): its specification limits can be read now.
    void databaseReachable();
};

// The sampling object of a monitor without SPC sampling: never enabled, starts
// nothing, writes no element.
class NullSampling : public SamplingSeam
{
public:
    bool StartCollection(const qlxLanguage &) override { return true; }
    void StopCollection(const qlxLanguage &, const DatasetCollection &) override {}
    void AddToSample(const qlxLanguage &, const CorvaneFUN26 &) override {}
    void ProcessSamplePeriod(const qlxLanguage &, const DatasetCollection &) override {}
    bool Enabled() const override { return false; }
    QDomElement GetXMLNode(QDomDocument &) override { return {}; }
    void SetXMLNode(const QDomElement &) override {}
    void InitializeSpecificationLimits(DatasetCollection &) override {}
};
