#include "AlarmListModel.h"

#include "monitor/AlarmList.h"

#include <limits>

AlarmListModel::AlarmListModel(const AlarmList &alarms, QObject *parent)
    : QAbstractListModel(parent)
    , m_alarms(alarms)
{
    sync();
}

void AlarmListModel::alarmsChanged()
{
    if (m_alarms.lineCount() < m_shown)
        m_resetPending = true;
}

void AlarmListModel::sync()
{
    // A view counts its rows in int; beyond that the oldest lines are not shown.
    const qsizetype lines =
        std::min<qsizetype>(m_alarms.lineCount(), std::numeric_limits<int>::max());
    if (m_resetPending || lines < m_shown) {
        beginResetModel();
        m_shown = lines;
        m_resetPending = false;
        endResetModel();
    } else if (lines > m_shown) {
        beginInsertRows(QModelIndex(), 0, int(lines - m_shown - 1));
        m_shown = lines;
        endInsertRows();
    }
}

int AlarmListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_shown);
}

QVariant AlarmListModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid() || m_resetPending)
        return {};
    // Lines added since the last sync sit above the rows shown.
    const qsizetype position = index.row() + (m_alarms.lineCount() - m_shown);
    if (position < 0 || position >= m_alarms.lineCount())
        return {};
    return m_alarms.line(position);
}
