#pragma once

#include <QAbstractScrollArea>
#include <QPointer>

class QAbstractItemModel;

// The alarms list on the monitor's face: one line of text per row of a list model,
// newest on top. A list view keeps a position for every row and lays them all out again
// when rows come in at the top, which costs milliseconds per weld after a million alarm
// lines. This view scrolls by whole lines and only ever reads and draws the lines in
// sight, so new lines cost the same whatever the length of the list.
//
// While the engineer reads older lines further down, lines that come in on top do not
// push them away: the view moves along with them. At the top it shows the newest lines.
class AlarmLinesView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit AlarmLinesView(QWidget *parent = nullptr);

    void setModel(QAbstractItemModel *model);
    QAbstractItemModel *model() const { return m_model; }

    // The picked line, -1 for none.
    int currentRow() const { return m_currentRow; }
    void setCurrentRow(int row);
    // The first line in sight.
    int firstVisibleRow() const;
    int lineHeight() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void rowsInserted(const QModelIndex &parent, int first, int last);
    void rowsRemoved(const QModelIndex &parent, int first, int last);
    void modelReset();
    void updateScrollRange();
    int rowCount() const;
    int visibleRows() const;
    void ensureVisible(int row);

    QPointer<QAbstractItemModel> m_model;
    int m_currentRow = -1;
};
