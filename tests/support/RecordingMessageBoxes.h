#pragma once

#include "platform/MessageBoxes.h"

#include <QList>
#include <QString>

// A message service that keeps what it is asked to show and answers at once, as a user
// pressing OK would, so that tests run through modal messages without a screen.
class RecordingMessageBoxes : public MessageBoxes
{
public:
    struct Message
    {
        QString title;
        QString text;
    };

    void critical(const QString &title, const QString &text) override
    {
        messages.append({title, text});
    }
    void beep() override { ++beeps; }
    // Questions are kept apart from the messages and answered with the next of
    // answers, as the test lined them up; with none left the answer is no.
    bool question(const QString &title, const QString &text) override
    {
        questions.append({title, text});
        return !answers.isEmpty() && answers.takeFirst();
    }

    bool isEmpty() const { return messages.isEmpty(); }
    int count() const { return int(messages.size()); }
    const Message &last() const { return messages.constLast(); }

    QList<Message> messages;
    QList<Message> questions;
    QList<bool> answers;
    int beeps = 0;
};
