#pragma once

#include <QAbstractListModel>

class AlarmList;

// The monitor's alarms list as a list model, newest line on top. A monitor may collect a
// million alarm lines over weeks; the model never copies or joins them. Each sync()
// inserts the lines added since the last one as one block of rows at the top, so a
// weld's alarms cost the same after a million lines as after the first, and a list view
// over the model keeps its scroll position and selection.
class AlarmListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit AlarmListModel(const AlarmList &alarms, QObject *parent = nullptr);

    // To be called whenever the engine's alarm list changed (lines added or the list
    // cleared), at once: a clear is noticed here, before new lines can hide it.
    void alarmsChanged();
    // Brings the rows up to date with the alarm list.
    void sync();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    const AlarmList &m_alarms;
    // Lines of the alarm list that the rows show; newer lines wait for the next sync.
    qsizetype m_shown = 0;
    bool m_resetPending = false;
};
