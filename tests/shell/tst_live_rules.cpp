#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "HeadlessEnvironment.h"
#include "SpcBaseline.h"

// Limits frozen with corvane-spc, then corvane-monitor --headless --verbose sampling a
// simulated welder whose energy has moved far from where it was: the first subgroup
// breaks rule 1, which the monitor prints and writes to its event log.
class TestLiveRules : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    bool spc(const QStringList &arguments, const QByteArray &input = {})
    {
        QProcess tool;
        tool.start(QStringLiteral(CORVANE_SPC_EXE),
                   QStringList(arguments) << "--dsn" << m_folder.filePath("plant.db"));
        tool.write(input);
        tool.closeWriteChannel();
        const bool done = tool.waitForFinished(20000) && tool.exitCode() == 0;
        if (!done)
            qWarning() << arguments << tool.readAllStandardError();
        return done;
    }

private slots:
    void shiftedEnergyBreaksRuleOne()
    {
        QVERIFY(spc({"import", "-"}, spcBaselineReport()));
        QVERIFY(spc({"freeze-limits", "--part", "Housing", "--process", "Seal weld", "--test",
                     "Energy", "--baseline", "10"}));

        QProcess sim;
        sim.start(QStringLiteral(CORVANE_SIM_EXE), {"--tcp", "0", "--count", "12", "--interval",
                                                    "150", "--seed", "5", "--energy", "800"});
        QVERIFY(sim.waitForStarted(5000));
        QTRY_VERIFY_WITH_TIMEOUT(sim.canReadLine(), 5000);
        const QRegularExpressionMatch announced =
            QRegularExpression(QStringLiteral("^tcp 127\\.0\\.0\\.1:(\\d+)\\s*$"))
                .match(QString::fromUtf8(sim.readLine()));
        QVERIFY2(announced.hasMatch(), "corvane-sim announced no port");

        QFile configurations(m_folder.filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(configurations.open(QIODevice::WriteOnly));
        configurations.write(
            QStringLiteral("<Configurations><Configuration>"
                           "<Equipment Name=\"Press 1\" Settings=\"IP:127.0.0.1:%1\"/>"
                           "<Sampling Enabled=\"True\" SamplingPeriod=\"1\" CollectionType=\"1\" "
                           "SubgroupSize=\"5\"><Database DSN=\"%2\"/>"
                           "<Part Name=\"Housing\" Reselect=\"False\"/>"
                           "<Process Name=\"Seal weld\"/></Sampling>"
                           "</Configuration></Configurations>")
                .arg(announced.captured(1), m_folder.filePath("plant.db"))
                .toUtf8());
        configurations.close();

        QProcess monitor;
        monitor.setProcessEnvironment(headlessEnvironment(QDir(m_folder.path())));
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {"--headless", "--verbose", "--data-dir", m_folder.path()});
        QVERIFY(monitor.waitForStarted(5000));
        QByteArray printed;
        const QByteArray expected = "Press 1: Energy - Rule 1: one point beyond 3 sigma\n";
        QTRY_VERIFY_WITH_TIMEOUT((printed += monitor.readAllStandardOutput()).contains(expected),
                                 30000);
        monitor.terminate();
        QVERIFY(monitor.waitForFinished(10000));
        sim.kill();
        sim.waitForFinished(5000);

        QFile eventLog(m_folder.filePath(QStringLiteral("corvane-monitor.log")));
        QVERIFY(eventLog.open(QIODevice::ReadOnly));
        const QByteArray logged = eventLog.readAll();
        QVERIFY2(
            logged.contains("SPC\tRuleViolation\t1\tEnergy - Rule 1: one point beyond 3 sigma"),
            logged.constData());
    }
};

QTEST_GUILESS_MAIN(TestLiveRules)
#include "tst_live_rules.moc"
