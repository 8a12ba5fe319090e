#include "SimRunner.h"

#include "CaptureReplay.h"
#include "FileSupply.h"
#include "GeneratedWelds.h"
#include "PtySupply.h"
#include "SerialSupply.h"
#include "TcpSupply.h"

#include <QDateTime>
#include <QFile>

#include <cstdio>

SimRunner::SimRunner(SimOptions options, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
{
    connect(&m_stopSignals, &StopSignals::stopRequested, this, &SimRunner::stopAll);
}

bool SimRunner::open(QString *errorText)
{
    if (m_options.seed) {
        m_seed = *m_options.seed;
    } else {
        m_seed = quint32(QDateTime::currentMSecsSinceEpoch());
        std::fprintf(stderr, "corvane-sim: seed %u\n", m_seed);
    }
    if (!m_options.replayFile.isEmpty()) {
        QFile capture(m_options.replayFile);
        if (!capture.open(QIODevice::ReadOnly)) {
            *errorText =
                QStringLiteral("cannot read %1: %2").arg(capture.fileName(), capture.errorString());
            return false;
        }
        m_capture = capture.readAll();
    }

    for (qsizetype i = 0; i < m_options.supplies.size(); ++i) {
        std::unique_ptr<Supply> supply = supplyFor(m_options.supplies.at(i), i);
        if (!supply->open(errorText))
            return false;
        connect(supply.get(), &Supply::finished, this, &SimRunner::onSupplyFinished);
        m_supplies.push_back(std::move(supply));
    }
    for (const std::unique_ptr<Supply> &supply : m_supplies)
        std::printf("%s\n", qPrintable(supply->startLine()));
    std::fflush(stdout);
    return true;
}

void SimRunner::start()
{
    for (const std::unique_ptr<Supply> &supply : m_supplies)
        supply->start();
}

std::unique_ptr<WeldSource> SimRunner::sourceFor(qsizetype index) const
{
    if (m_options.paceBytesPerSecond)
        return std::make_unique<PacedCapture>(m_capture, *m_options.paceBytesPerSecond);
    if (!m_options.replayFile.isEmpty())
        return std::make_unique<CaptureReplay>(m_capture);

    // Each supply has its own values, the same ones for the same seed.
    const quint32 seed = m_seed + quint32(index);
    WeldGenerator generator(m_options.system, seed);
    generator.setMeans(m_options.means);
    generator.setWeldMode(m_options.weldMode);
    generator.setAlarmProbability(m_options.alarmProbability);
    return std::make_unique<GeneratedWelds>(generator, m_options.system, m_options.garbageBytes,
                                            ~seed);
}

std::unique_ptr<Supply> SimRunner::supplyFor(const SimOptions::SupplyOption &wanted,
                                             qsizetype index)
{
    using Kind = SimOptions::SupplyOption::Kind;
    std::unique_ptr<WeldSource> source = sourceFor(index);
    const int interval =
        m_options.paceBytesPerSecond ? PacedCapture::kStepMs : m_options.intervalMs;
    switch (wanted.kind) {
    case Kind::Tcp:
        return std::make_unique<TcpSupply>(wanted.port, std::move(source), interval,
                                           m_options.count);
    case Kind::Serial:
        return std::make_unique<SerialSupply>(wanted.target, std::move(source), interval,
                                              m_options.count);
    case Kind::Pty:
        return std::make_unique<PtySupply>(std::move(source), interval, m_options.count);
    case Kind::File:
        break;
    }
    return std::make_unique<FileSupply>(wanted.target, std::move(source), interval,
                                        m_options.count);
}

void SimRunner::onSupplyFinished()
{
    int status = 0;
    for (const std::unique_ptr<Supply> &supply : m_supplies) {
        if (!supply->isFinished())
            return;
        if (!supply->failure().isEmpty()) {
            std::fprintf(stderr, "corvane-sim: %s\n", qPrintable(supply->failure()));
            status = kFailed;
        }
    }
    emit done(status);
}

void SimRunner::stopAll()
{
    for (const std::unique_ptr<Supply> &supply : m_supplies)
        supply->stop();
}
