#pragma once

#include "SimOptions.h"
#include "StopSignals.h"
#include "Supply.h"

#include <QObject>

#include <memory>
#include <vector>

// Sets up the supplies of the command line, announces them, and ends the program when
// every one has finished or a stop signal arrives.
class SimRunner : public QObject
{
    Q_OBJECT

public:
    static constexpr int kFailed = 1;

    explicit SimRunner(SimOptions options, QObject *parent = nullptr);

    // Opens every supply and prints its line; false with the reason when one cannot be
    // opened or the capture to replay cannot be read. Then start() sets them welding.
    bool open(QString *errorText);
    void start();

signals:
    // Every supply is done: the exit status of the program.
    void done(int status);

private:
    std::unique_ptr<WeldSource> sourceFor(qsizetype index) const;
    std::unique_ptr<Supply> supplyFor(const SimOptions::SupplyOption &wanted, qsizetype index);
    void onSupplyFinished();
    void stopAll();

    SimOptions m_options;
    quint32 m_seed = 0;
    QByteArray m_capture;
    std::vector<std::unique_ptr<Supply>> m_supplies;
    StopSignals m_stopSignals;
};
