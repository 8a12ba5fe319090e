#include "Supply.h"

Supply::Supply(std::unique_ptr<WeldSource> source, int intervalMs, std::optional<qint64> count,
               QObject *parent)
    : QObject(parent)
    , m_source(std::move(source))
    , m_count(count)
{
    m_timer.setInterval(intervalMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Supply::step);
}

void Supply::start()
{
    if (m_count && *m_count <= 0) {
        endWelding();
        return;
    }
    m_timer.start();
}

void Supply::stop()
{
    m_timer.stop();
    if (m_finished)
        return;
    m_ending = true;
    closeNow();
    markFinished();
}

void Supply::step()
{
    if (!canSend()) {
        m_timer.stop();
        m_waiting = true;
        return;
    }
    const std::optional<QByteArray> bytes = m_source->next();
    if (!bytes) {
        endWelding();
        return;
    }
    if (!bytes->isEmpty())
        send(*bytes);
    if (m_source->stepsAreWelds() && m_count && ++m_welds >= *m_count)
        endWelding();
}

void Supply::resume()
{
    if (!m_waiting || m_ending)
        return;
    m_waiting = false;
    m_timer.start();
}

void Supply::endWelding()
{
    m_timer.stop();
    if (m_ending)
        return;
    m_ending = true;
    drain();
}

void Supply::markFinished()
{
    if (m_finished)
        return;
    m_finished = true;
    emit finished();
}

void Supply::fail(const QString &reason)
{
    m_timer.stop();
    if (m_finished)
        return;
    m_failure = reason;
    m_ending = true;
    closeNow();
    markFinished();
}
