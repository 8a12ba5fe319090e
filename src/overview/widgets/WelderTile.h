#pragma once

#include <QFrame>

#include <vector>

class QLabel;
class WelderFigures;
class qlxLanguage;

// One welder on the hall overview, large enough to read from across a cell: its name,
// link state, welds in the last hour and rate, the last weld's time, and one cell per
// characteristic coloured as its meter (red: some of the recent welds were out of
// specification, yellow: some broke a warning limit, green: all inside) with those
// counts; below them the SPC backlog and the control-rule violations of the last hour,
// when there are any. A click asks for the welder's own tab.
class WelderTile : public QFrame
{
    Q_OBJECT

public:
    WelderTile(const WelderFigures &figures, const qlxLanguage &language,
               QWidget *parent = nullptr);

    const WelderFigures &figures() const { return m_figures; }
    // Takes the figures' current state into the labels.
    void refresh();

    QSize sizeHint() const override;

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;

private:
    QLabel *addLabel(const QString &objectName, double fontScale, bool bold);
    void refreshSpc();

    const WelderFigures &m_figures;
    const qlxLanguage &m_language;
    QLabel *m_lblName = nullptr;
    QLabel *m_lblLinkState = nullptr;
    QLabel *m_lblWelds = nullptr;
    QLabel *m_lblLastWeld = nullptr;
    QLabel *m_lblSpc = nullptr;
    std::vector<QLabel *> m_characteristics;
};
