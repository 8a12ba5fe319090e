#pragma once

#include <QEvent>
#include <QObject>

// Counts the paint events of the widget it is installed on, to tell whether a burst of
// updates was coalesced.
class PaintCounter : public QObject
{
public:
    int paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};
