#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// One instance per desktop user, between real corvane-monitor processes (headless and
// with a window) that share a private runtime folder.
class TestSingleInstance : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_runtime;
    QTemporaryDir m_folder;

    QProcessEnvironment environment() const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("CORVANE_DATA_DIR"));
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
        env.insert(QStringLiteral("TMPDIR"), m_runtime.path());
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("CORVANE_SETTINGS_FILE"),
                   m_folder.filePath(QStringLiteral("settings.ini")));
        return env;
    }

    QString dataFolder(const QString &name) const { return m_folder.filePath(name); }

    void start(QProcess &process, const QStringList &arguments)
    {
        process.setProcessEnvironment(environment());
        process.start(QStringLiteral(CORVANE_MONITOR_EXE), arguments);
        QVERIFY(process.waitForStarted(5000));
    }

    static bool stderrContains(QProcess &process, QByteArray &seen, const char *text)
    {
        seen += process.readAllStandardError();
        return seen.contains(text);
    }

    // A headless instance on the data folder "first", once it watches its welders.
    void startHeadless(QProcess &process, QByteArray &errors)
    {
        start(process, {QStringLiteral("--headless"), QStringLiteral("--data-dir"),
                        dataFolder(QStringLiteral("first"))});
        QTRY_VERIFY_WITH_TIMEOUT(stderrContains(process, errors, "watching"), 10000);
    }

    // The window instance prints nothing when it is up; it is up once it listens for
    // other starts. Without this wait a slow first start (under the sanitizers) could
    // lose the race for the lock to the second one.
    bool listening() const
    {
        return !QDir(m_runtime.path())
                    .entryList({QStringLiteral("*.socket")}, QDir::System | QDir::Hidden)
                    .isEmpty();
    }

    // A second window start on the first one's data folder ends at once with status 0
    // and hands over; a headless one says why it does not run and ends with status 1.
    void secondStartHandsOver(const QStringList &arguments)
    {
        const bool headless = arguments.contains(QStringLiteral("--headless"));
        QProcess second;
        start(second, QStringList(arguments)
                          << QStringLiteral("--data-dir") << dataFolder(QStringLiteral("first")));
        QVERIFY2(second.waitForFinished(10000), "the second start did not end");
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), headless ? 1 : 0);
        QCOMPARE(second.readAllStandardError().contains("already runs on the data folder"),
                 headless);
    }

    static void endCleanly(QProcess &process)
    {
        ::kill(pid_t(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitCode(), 0);
    }

private slots:
    void cleanup()
    {
        QDir(dataFolder(QStringLiteral("first"))).removeRecursively();
        QDir(dataFolder(QStringLiteral("second"))).removeRecursively();
    }

    void secondStartWhileHeadless()
    {
        QProcess first;
        QByteArray firstErrors;
        startHeadless(first, firstErrors);
        secondStartHandsOver({QStringLiteral("--headless")});
        // A window start hands over to a headless instance.
        secondStartHandsOver({});
        QTRY_VERIFY_WITH_TIMEOUT(stderrContains(first, firstErrors, "another start asked"), 5000);
        QCOMPARE(first.state(), QProcess::Running);

        // A service on a data folder of its own runs beside it.
        QProcess other;
        QByteArray otherErrors;
        start(other, {QStringLiteral("--headless"), QStringLiteral("--data-dir"),
                      dataFolder(QStringLiteral("second"))});
        QTRY_VERIFY_WITH_TIMEOUT(stderrContains(other, otherErrors, "watching"), 10000);
        endCleanly(other);
        endCleanly(first);
    }

    void secondStartRaisesTheWindow()
    {
        const QString folder = dataFolder(QStringLiteral("first"));
        QVERIFY(QDir().mkpath(folder));
        // One welder, so that no Equipment Settings opens by itself.
        QFile configurations(QDir(folder).filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(configurations.open(QIODevice::WriteOnly));
        configurations.write("<Configurations><Configuration><Equipment Name=\"Press 1\" "
                             "Settings=\"IP:127.0.0.1:9\"/></Configuration></Configurations>");
        configurations.close();

        QProcess first;
        start(first, {QStringLiteral("--data-dir"), folder});
        QTRY_VERIFY_WITH_TIMEOUT(listening(), 20000);
        QByteArray firstErrors;
        secondStartHandsOver({});
        QTRY_VERIFY_WITH_TIMEOUT(stderrContains(first, firstErrors, "window restored and raised"),
                                 5000);
        // A headless start leaves the window where it is.
        secondStartHandsOver({QStringLiteral("--headless")});
        QTest::qWait(200);
        QCOMPARE((firstErrors += first.readAllStandardError()).count("window restored and raised"),
                 1);

        // A termination request saves as Shut Down does.
        endCleanly(first);
        firstErrors += first.readAllStandardError();
        QVERIFY2(!firstErrors.contains("rror"), firstErrors.constData());
        QVERIFY(!QDir(folder).entryList({QStringLiteral("corvane-monitor.cfg_*")}).isEmpty());
    }

    void deadInstanceLeavesNoLock()
    {
        QProcess first;
        QByteArray errors;
        startHeadless(first, errors);
        first.kill();
        QVERIFY(first.waitForFinished(5000));

        // The lock and the socket of the killed instance are left behind; the next start
        // takes over anyway.
        QProcess next;
        QByteArray nextErrors;
        startHeadless(next, nextErrors);
        endCleanly(next);
    }
};

QTEST_GUILESS_MAIN(TestSingleInstance)
#include "tst_singleinstance.moc"
