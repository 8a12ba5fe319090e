#pragma once

#include <QString>

namespace qlaDatabase6 {

class Database;

enum class RecordKind { Group, Part, Process, Test };

// Text of a kind for messages: "group", "part", "process", "test".
QString recordKindText(RecordKind kind);

// A group, part, process or test of the SPC database. The monitor knows parts,
// processes and tests by name only: it sets the name and the look-up-by-name selector
// and loads the record, which then carries the identifier (0 when there is no such
// record) and, for parts and processes, the identifier and name of their group.
// Groups are loaded by identifier (selector kLookupById) as well as by name.
class Record
{
public:
    static constexpr int kLookupById = 0;
    static constexpr int kLookupByName = 1;

    explicit Record(RecordKind kind)
        : m_kind(kind)
    {}

    RecordKind kind() const { return m_kind; }

    void setName(const QString &name) { m_name = name; }
    const QString &name() const { return m_name; }
    void setLookup(int selector) { m_lookup = selector; }
    int lookup() const { return m_lookup; }
    void setId(qint64 id) { m_id = id; }
    qint64 id() const { return m_id; }
    void setGroupId(qint64 groupId) { m_groupId = groupId; }
    qint64 groupId() const { return m_groupId; }
    void setGroupName(const QString &groupName) { m_groupName = groupName; }
    const QString &groupName() const { return m_groupName; }

    // Loads the record from a connection by its name or identifier, as the selector
    // says. Returns whether it was found; when not, the identifier is 0. A failure of
    // the connection is thrown as a ProgramError.
    bool load(Database &database);

private:
    RecordKind m_kind;
    QString m_name;
    int m_lookup = kLookupByName;
    qint64 m_id = 0;
    qint64 m_groupId = 0;
    QString m_groupName;
};

class Group : public Record
{
public:
    Group()
        : Record(RecordKind::Group)
    {}
};

class Part : public Record
{
public:
    Part()
        : Record(RecordKind::Part)
    {}
};

class Process : public Record
{
public:
    Process()
        : Record(RecordKind::Process)
    {}
};

class Test : public Record
{
public:
    Test()
        : Record(RecordKind::Test)
    {}
};

// The specification limits and warning limits of one test (characteristic) on one part. The
// flags word tells which limits are present, with the bits the statistics record uses:
// 2 upper specification limit, 4 upper warning limit, 16 lower warning limit, 32 lower
// specification limit. A limit whose bit is clear is kept as 0.
class SpecLimit
{
public:
    static constexpr int kUpperSpecLimit = 2;
    static constexpr int kUpperWarningLimit = 4;
    static constexpr int kLowerWarningLimit = 16;
    static constexpr int kLowerSpecLimit = 32;
    static constexpr int kAllLimits =
        kUpperSpecLimit | kUpperWarningLimit | kLowerWarningLimit | kLowerSpecLimit;

    // The selectors say how the record is found: 1 for the part and 1 for the test
    // mean "by the part identifier and the test identifier", the only way there is.
    static constexpr int kByIdentifier = 1;

    void setPartSelector(int selector) { m_partSelector = selector; }
    int partSelector() const { return m_partSelector; }
    void setTestSelector(int selector) { m_testSelector = selector; }
    int testSelector() const { return m_testSelector; }
    void setPartId(qint64 id) { m_partId = id; }
    qint64 partId() const { return m_partId; }
    void setTestId(qint64 id) { m_testId = id; }
    qint64 testId() const { return m_testId; }

    int limitFlags() const { return m_limitFlags; }
    double upperSpecLimit() const { return m_upperSpecLimit; }
    double lowerSpecLimit() const { return m_lowerSpecLimit; }
    double upperWarningLimit() const { return m_upperWarningLimit; }
    double lowerWarningLimit() const { return m_lowerWarningLimit; }

    // Sets one limit and its bit.
    void setUpperSpecLimit(double value) { setLimit(kUpperSpecLimit, m_upperSpecLimit, value); }
    void setLowerSpecLimit(double value) { setLimit(kLowerSpecLimit, m_lowerSpecLimit, value); }
    void setUpperWarningLimit(double value)
    {
        setLimit(kUpperWarningLimit, m_upperWarningLimit, value);
    }
    void setLowerWarningLimit(double value)
    {
        setLimit(kLowerWarningLimit, m_lowerWarningLimit, value);
    }
    // Sets the flags word and all four limits as stored.
    void setLimits(int flags, double usl, double lsl, double uwl, double lwl);
    // Drops every limit (flags 0, limits 0).
    void clearLimits() { setLimits(0, 0, 0, 0, 0); }

    // Throws "Invalid Value! LimitLower > LimitUpper!" when a lower limit lies above the
    // upper limit of its pair (both present).
    void checkOrder(const QString &source) const;

    // Names of the part and the test, filled when limits are listed.
    void setNames(const QString &partName, const QString &testName)
    {
        m_partName = partName;
        m_testName = testName;
    }
    const QString &partName() const { return m_partName; }
    const QString &testName() const { return m_testName; }

    // Loads the limits of the part and test from a connection. Returns whether the part
    // has limits for the test; when not, the flags word and the limits are 0.
    bool load(Database &database);

private:
    void setLimit(int bit, double &field, double value)
    {
        m_limitFlags |= bit;
        field = value;
    }

    int m_partSelector = kByIdentifier;
    int m_testSelector = kByIdentifier;
    qint64 m_partId = 0;
    qint64 m_testId = 0;
    int m_limitFlags = 0;
    double m_upperSpecLimit = 0;
    double m_lowerSpecLimit = 0;
    double m_upperWarningLimit = 0;
    double m_lowerWarningLimit = 0;
    QString m_partName;
    QString m_testName;
};

} // namespace qlaDatabase6
