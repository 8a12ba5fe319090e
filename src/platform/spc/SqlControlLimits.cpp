// The frozen control limits and the subgroup identity check of the SQL database.

#include "SqlDatabase.h"
#include "SqlTables.h"

#include <QSqlQuery>

namespace qlaDatabase6 {

namespace {

const QString kLimitColumns = QStringLiteral(
    "part, process, test, chart_type, centre_line, sigma, baseline_from, baseline_until,"
    " baseline_subgroups, frozen_at");

QVariant optionalTime(const QDateTime &time)
{
    return time.isValid() ? QVariant(tables::timeText(time))
                          : QVariant(QMetaType::fromType<QString>());
}

QVariantList limitValues(const ControlLimitRecord &limits)
{
    return {limits.part,
            limits.process,
            limits.test,
            limits.chartType,
            limits.centre,
            limits.sigma,
            optionalTime(limits.baselineFrom),
            optionalTime(limits.baselineUntil),
            limits.baselineSubgroups,
            tables::timeText(limits.frozenAt)};
}

ControlLimitRecord limitsFrom(const QSqlQuery &query)
{
    ControlLimitRecord limits;
    limits.part = query.value(0).toString();
    limits.process = query.value(1).toString();
    limits.test = query.value(2).toString();
    limits.chartType = query.value(3).toString();
    limits.centre = query.value(4).toDouble();
    limits.sigma = query.value(5).toDouble();
    if (!query.isNull(6))
        limits.baselineFrom = tables::timeFrom(query.value(6));
    if (!query.isNull(7))
        limits.baselineUntil = tables::timeFrom(query.value(7));
    limits.baselineSubgroups = query.value(8).toInt();
    limits.frozenAt = tables::timeFrom(query.value(9));
    return limits;
}

QList<ControlLimitRecord> allLimits(QSqlQuery &query)
{
    QList<ControlLimitRecord> list;
    while (query.next())
        list.append(limitsFrom(query));
    return list;
}

} // namespace

bool SqlDatabase::hasSubgroup(const SubgroupHeader &header)
{
    return guarded("SqlDatabase.hasSubgroup", [&] {
        QSqlQuery query = sql::execute(
            m_database,
            QStringLiteral("SELECT COUNT(*) FROM subgroups WHERE sample_time = ? AND part = ?"
                           " AND process = ? AND source_tag = ?"),
            {tables::timeText(header.dateTime), header.part, header.process, header.sourceTag},
            "SqlDatabase.hasSubgroup");
        return query.next() && query.value(0).toLongLong() > 0;
    });
}

ControlLimitRecord SqlDatabase::controlLimits(const QString &part, const QString &process,
                                              const QString &test)
{
    return guarded("SqlDatabase.controlLimits", [&] {
        QSqlQuery query = sql::execute(m_database,
                                       QStringLiteral("SELECT %1 FROM control_limits WHERE part = ?"
                                                      " AND process = ? AND test = ?")
                                           .arg(kLimitColumns),
                                       {part, process, test}, "SqlDatabase.controlLimits");
        return query.next() ? limitsFrom(query) : ControlLimitRecord{};
    });
}

void SqlDatabase::freezeControlLimits(const ControlLimitRecord &limits)
{
    guarded("SqlDatabase.freezeControlLimits", [&] {
        const char *const procedure = "SqlDatabase.freezeControlLimits";
        const QVariantList key = {limits.part, limits.process, limits.test};
        if (!m_database.transaction())
            throw ProgramError::raised(QStringLiteral("SPC database: no transaction"),
                                       QLatin1String(procedure));
        try {
            sql::execute(m_database,
                         QStringLiteral("INSERT INTO control_limits_history (%1, replaced_at)"
                                        " SELECT %1, ? FROM control_limits WHERE part = ?"
                                        " AND process = ? AND test = ?")
                             .arg(kLimitColumns),
                         QVariantList{tables::timeText(limits.frozenAt)} + key, procedure);
            sql::execute(m_database,
                         QStringLiteral("DELETE FROM control_limits WHERE part = ? AND process = ?"
                                        " AND test = ?"),
                         key, procedure);
            sql::execute(m_database,
                         QStringLiteral("INSERT INTO control_limits (%1) VALUES"
                                        " (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
                             .arg(kLimitColumns),
                         limitValues(limits), procedure);
            if (!m_database.commit())
                throw ProgramError::raised(QStringLiteral("SPC database: commit failed"),
                                           QLatin1String(procedure));
        } catch (...) {
            m_database.rollback();
            throw;
        }
    });
}

QList<ControlLimitRecord> SqlDatabase::listControlLimits()
{
    return guarded("SqlDatabase.listControlLimits", [&] {
        QSqlQuery query = sql::execute(
            m_database,
            QStringLiteral("SELECT %1 FROM control_limits ORDER BY part, process, test")
                .arg(kLimitColumns),
            {}, "SqlDatabase.listControlLimits");
        return allLimits(query);
    });
}

QList<ControlLimitRecord>
SqlDatabase::controlLimitHistory(const QString &part, const QString &process, const QString &test)
{
    return guarded("SqlDatabase.controlLimitHistory", [&] {
        QSqlQuery query =
            sql::execute(m_database,
                         QStringLiteral("SELECT %1 FROM control_limits_history WHERE part = ?"
                                        " AND process = ? AND test = ? ORDER BY id")
                             .arg(kLimitColumns),
                         {part, process, test}, "SqlDatabase.controlLimitHistory");
        return allLimits(query);
    });
}

} // namespace qlaDatabase6
