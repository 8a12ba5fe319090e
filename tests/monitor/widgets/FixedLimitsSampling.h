#pragma once

#include "monitor/SamplingSeam.h"
#include "stats/DatasetCollection.h"

#include <QHash>

// A sampling object that stands in for the SPC database: at every start of collection it
// gives the characteristics the specification limits and warning limits a test has set, by
// characteristic number, and it plays the part chooser.
class FixedLimitsSampling : public NullSampling
{
public:
    struct Limits
    {
        int flags = 0;
        double lowerSpec = 0;
        double upperSpec = 0;
        double lowerWarning = 0;
        double upperWarning = 0;
    };

    static Limits specification(double lower, double upper)
    {
        return {Dataset::kLowerSpecLimit | Dataset::kUpperSpecLimit, lower, upper, 0, 0};
    }
    static Limits withWarnings(double lowerSpec, double upperSpec, double lowerWarning,
                               double upperWarning)
    {
        return {Dataset::kLowerSpecLimit | Dataset::kUpperSpecLimit | Dataset::kLowerWarningLimit |
                    Dataset::kUpperWarningLimit,
                lowerSpec, upperSpec, lowerWarning, upperWarning};
    }

    void InitializeSpecificationLimits(DatasetCollection &datasets) override
    {
        for (const auto &dataset : datasets) {
            const auto found = limits.constFind(dataset->ID);
            if (found == limits.constEnd())
                continue;
            dataset->LimitFlags = found->flags;
            dataset->LowerSpecLimit = found->lowerSpec;
            dataset->UpperSpecLimit = found->upperSpec;
            dataset->LowerWarningLimit = found->lowerWarning;
            dataset->UpperWarningLimit = found->upperWarning;
        }
    }

    QString Part() const override { return part; }
    int backlog() const override { return queuedSubgroups; }
    bool SelectPart(QObject *owner) override
    {
        chooserOwners.append(owner);
        if (offeredPart.isEmpty() || offeredPart == part)
            return false;
        part = offeredPart;
        return true;
    }

    QHash<qint32, Limits> limits;
    QString part;
    // What the engineer picks in the part chooser; empty: the chooser is cancelled.
    QString offeredPart;
    QList<QObject *> chooserOwners;
    // Subgroups waiting in the outbox for the SPC database.
    int queuedSubgroups = 0;
};
