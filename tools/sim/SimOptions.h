#pragma once

#include "WeldGenerator.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The command line of corvane-sim. Each supply is one option, repeatable, and supplies
// keep the order in which they are given; everything else applies to all of them.
struct SimOptions
{
    struct SupplyOption
    {
        enum class Kind { Tcp, Serial, Pty, File };
        Kind kind;
        QString target; // device or file path
        quint16 port = 0;
    };

    QList<SupplyOption> supplies;
    int intervalMs = 1000;
    std::optional<qint64> count; // welds per supply; none means no end
    std::optional<quint32> seed;
    MeasurementSystem system = MeasurementSystem::Metric;
    WeldGenerator::Means means;
    quint8 weldMode = 0x01;
    double alarmProbability = 0.02;
    int garbageBytes = 0;
    QString replayFile;
    std::optional<qint64> paceBytesPerSecond;
    bool help = false;

    // The options of the arguments (program name first); nothing, with a one-line
    // reason, for bad usage.
    static std::optional<SimOptions> parse(const QStringList &arguments, QString *errorText);
    static QString helpText();
};
