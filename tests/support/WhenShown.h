#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

// Answers the next visible top-level window of type Window as soon as it is on the
// screen, after handing it to inspect: the call under test is blocked in the window's own
// event loop until the answer closes it. Whatever the answer did, the window is rejected
// if it is still open, so that the call comes back.
template <typename Window> void whenShown(std::function<void(Window *)> answer)
{
    auto *poll = new QTimer;
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, [poll, answer] {
        for (QWidget *top : QApplication::topLevelWidgets()) {
            auto *window = qobject_cast<Window *>(top);
            if (!window || !window->isVisible())
                continue;
            poll->stop();
            poll->deleteLater();
            answer(window);
            if (window->isVisible())
                window->reject();
            return;
        }
    });
    poll->start();
}
