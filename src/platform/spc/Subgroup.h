#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

namespace qlaDatabase6 {

class Database;

// What a subgroup says about itself: when it was taken, for which part and process,
// and from where.
struct SubgroupHeader
{
    bool flag = true;
    qint32 valueCount = 0;
    QDateTime dateTime;
    QString partGroup;
    QString part;
    QString processGroup;
    QString process;
    QString sourceTag;
    // Given once when the period closes and kept through every retry, so that the
    // database recognises a subgroup it already holds.
    QString key = {};
};

struct SubgroupValue
{
    qint32 sampleNumber = 0;
    double value = 0;
    // Only alarm lists name their values; a measured value has no text.
    QString text;
};

struct TestItem
{
    static constexpr int kMeasuredValue = 1;
    static constexpr int kAlarmList = 2;

    QString name;
    int kind = kMeasuredValue;
    QList<SubgroupValue> values;
};

// One sampling period's subgroup, built up in memory and then stored as a whole: the
// header, then test items (one per sampled characteristic, the weld rate and each
// logged alarm group), each with its values. The monitor keeps one object and reuses
// it for every period; setting the header starts a new subgroup.
class Subgroup
{
public:
    // Starts a new subgroup with this header; test items of the previous one are
    // dropped.
    void setHeader(const SubgroupHeader &header);
    const SubgroupHeader &header() const { return m_header; }
    // Corrects the header of the subgroup as it is, keeping its test items.
    void amendHeader(const SubgroupHeader &header) { m_header = header; }

    void AddTestItem(const QString &name, int kind);
    // Adds a value to the test item added last. Throws a ProgramError when no test item
    // has been added yet.
    void addValue(qint32 sampleNumber, double value, const QString &text = {});

    const QList<TestItem> &testItems() const { return m_testItems; }
    qsizetype storedValueCount() const;

    // Stores the subgroup through a connection, whole or not at all; returns its
    // identifier. A failure is thrown as a ProgramError and leaves nothing stored.
    qint64 store(Database &database) const;

private:
    SubgroupHeader m_header;
    QList<TestItem> m_testItems;
};

} // namespace qlaDatabase6
