#include "FakeMonitor.h"
#include "ManualClock.h"
#include "RecordingErrorReport.h"

#include "monitor/EquipmentMonitor.h"
#include "platform/EventLog.h"
#include "platform/ProgramError.h"
#include "platform/qlxLanguage.h"
#include "shell/ConfigurationSet.h"
#include "shell/EquipmentMonitorSlot.h"
#include "shell/XmlText.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString configuration(const QString &name, const QString &extra = {})
{
    return QStringLiteral("<Configuration%1><Equipment Name=\"%2\" Settings=\"IP:127.0.0.1:%3\"/>"
                          "</Configuration>")
        .arg(extra, name)
        .arg(1000 + name.size());
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

// The configurations file and the monitor slots, against real files in a temporary
// folder.
class TestConfigurationSet : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    ManualClock m_clock;
    qlxLanguage m_language;
    QList<FakeMonitor *> m_monitors;

    QString path() const { return m_folder.filePath(QStringLiteral("corvane-monitor.cfg")); }
    QString datedCopy(const char *stamp) const { return path() + u'_' + QLatin1String(stamp); }

    std::unique_ptr<ConfigurationSet> makeSet(const QString &configurationsPath)
    {
        m_monitors.clear();
        return std::make_unique<ConfigurationSet>(
            configurationsPath, m_clock, m_language, [this](int slot) {
                auto monitor = std::make_unique<FakeMonitor>(QStringLiteral("key-%1").arg(slot));
                m_monitors.append(monitor.get());
                return monitor;
            });
    }
    std::unique_ptr<ConfigurationSet> makeSet() { return makeSet(path()); }

    QStringList folderEntries() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    void save(ConfigurationSet &set) { set.WriteConfigurationFile(xmlText(set.GetXMLNode())); }

private slots:
    void init()
    {
        for (const QString &name : folderEntries())
            QFile::remove(m_folder.filePath(name));
        m_clock.set(QDateTime(QDate(2026, 11, 14), QTime(22, 5, 9)));
    }

    void firstStartWithoutFile()
    {
        auto set = makeSet();
        QVERIFY(set->LoadConfigurationFile());
        QCOMPARE(folderEntries(), QStringList{"corvane-monitor.cfg"});
        QCOMPARE(readBytes(path()), QByteArray());
        QCOMPARE(set->ConfigurationCount(), 0);
        QCOMPARE(set->currentTab(), -1);
        QCOMPARE(set->GetConfigurationIndex(QString()), -1);
        QVERIFY(set->GetTab(QString()) == nullptr);

        save(*set);
        QCOMPARE(readBytes(path()), QByteArray("<Configurations/>"));
        QCOMPARE(folderEntries(),
                 (QStringList{"corvane-monitor.cfg", "corvane-monitor.cfg_261114220509"}));
        QCOMPARE(readBytes(datedCopy("261114220509")), QByteArray("<Configurations/>"));

        // Nothing changed since: the next exit writes nothing and leaves no new copy.
        m_clock.advanceSeconds(60);
        save(*set);
        QCOMPARE(folderEntries().size(), 2);

        // Every save leaves its copy and none is deleted; saves within one second share
        // one copy, holding the last, and no temporary file remains.
        m_clock.set(QDateTime(QDate(2027, 1, 2), QTime(3, 4, 5)));
        QVERIFY(
            set->WriteConfigurationFile(QStringLiteral("<Configurations><A/></Configurations>")));
        m_clock.advanceMilliseconds(900);
        QVERIFY(
            set->WriteConfigurationFile(QStringLiteral("<Configurations><B/></Configurations>")));
        QCOMPARE(folderEntries(),
                 (QStringList{"corvane-monitor.cfg", "corvane-monitor.cfg_261114220509",
                              "corvane-monitor.cfg_270102030405"}));
        QCOMPARE(readBytes(path()), QByteArray("<Configurations><B/></Configurations>"));
        QCOMPARE(readBytes(datedCopy("270102030405")), readBytes(path()));
    }

    void configurationsInFileOrder()
    {
        const QString text = QStringLiteral("<Configurations>") + configuration("Horn A") +
                             QStringLiteral("<Notes Text=\"kept by someone else\"/>") +
                             configuration("Horn B") + QStringLiteral("</Configurations>");
        writeBytes(path(), text.toUtf8());
        auto set = makeSet();
        QSignalSpy added(set.get(), &ConfigurationSet::tabAdded);
        QVERIFY(set->LoadConfigurationFile());

        QCOMPARE(set->ConfigurationCount(), 2);
        QCOMPARE(added.count(), 2);
        QCOMPARE(set->tabs(), (QList<ConfigurationTab>{{"key-0", "Horn A"}, {"key-1", "Horn B"}}));
        QCOMPARE(m_monitors[0]->initializedAs, 0);
        QCOMPARE(m_monitors[1]->initializedAs, 1);
        // The first tab is selected as a tab strip selects the first tab it is given.
        QCOMPARE(set->currentTab(), 0);
        QCOMPARE(set->GetConfigurationIndex(QString()), 0);
        QCOMPARE(set->GetConfigurationIndex(QStringLiteral("key-1")), 1);
        QCOMPARE(set->GetConfigurationIndex(QStringLiteral("KEY-1")), -1);

        // Saving keeps the configurations in slot order and drops the foreign element.
        QCOMPARE(xmlText(set->GetXMLNode()), QStringLiteral("<Configurations>") +
                                                 configuration("Horn A") + configuration("Horn B") +
                                                 QStringLiteral("</Configurations>"));
    }

    void refusedConfigurationLeavesItsSlotFree()
    {
        auto set = makeSet();
        QCOMPARE(set->AddConfiguration(configuration("Horn A")), QStringLiteral("key-0"));
        QCOMPARE(set->AddConfiguration(configuration("Broken", " Refuse=\"1\"")), QString());
        QCOMPARE(set->slotCount(), 2);
        QCOMPARE(set->monitor(1).DriverState(), 0);
        QCOMPARE(set->ConfigurationCount(), 1);

        QCOMPARE(set->AddConfiguration(configuration("Horn B")), QStringLiteral("key-1"));
        QCOMPARE(set->slotCount(), 2);
        QCOMPARE(set->AddConfiguration(configuration("Horn C")), QStringLiteral("key-2"));
        QCOMPARE(set->slotCount(), 3);
        QCOMPARE(set->tabs().last(), (ConfigurationTab{"key-2", "Horn C"}));

        // In a file, a refused element gets no tab and the others go on.
        const QString text = QStringLiteral("<Configurations>") +
                             configuration("X", " Refuse=\"1\"") + configuration("Y") +
                             QStringLiteral("</Configurations>");
        QVERIFY(set->BuildConfigurations(text));
        QCOMPARE(set->tabs(), (QList<ConfigurationTab>{{"key-0", "Y"}}));
    }

    void rebuildingReusesTheMonitors()
    {
        auto set = makeSet();
        const QString two = QStringLiteral("<Configurations>") + configuration("A") +
                            configuration("B") + QStringLiteral("</Configurations>");
        QVERIFY(set->BuildConfigurations(two));
        const QList<FakeMonitor *> first = m_monitors;
        QSignalSpy removed(set.get(), &ConfigurationSet::tabRemoved);
        QSignalSpy current(set.get(), &ConfigurationSet::currentTabChanged);

        QVERIFY(set->BuildConfigurations(QString()));
        QCOMPARE(removed.count(), 2);
        QCOMPARE(current.count(), 1);
        QCOMPARE(current.first().first().toInt(), -1);
        QCOMPARE(set->ConfigurationCount(), 0);
        QCOMPARE(first[0]->shutDowns, 1);
        QCOMPARE(first[1]->shutDowns, 1);
        // Free slots are still searched by key.
        QCOMPARE(set->GetConfigurationIndex(QStringLiteral("key-1")), 1);

        QVERIFY(set->BuildConfigurations(two));
        QCOMPARE(set->slotCount(), 2);
        QCOMPARE(m_monitors, first);
    }

    void corruptFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not well-formed") << QByteArray("<Configurations><Configuration>");
        QTest::newRow("other root") << QByteArray("<Settings><Configuration/></Settings>");
        QTest::newRow("binary") << QByteArray("\x00\xff\x13garbage", 10);
    }

    void corruptFile()
    {
        QFETCH(QByteArray, content);
        auto set = makeSet();
        QVERIFY(set->AddConfiguration(configuration("Loaded before")) != QString());
        writeBytes(path(), content);
        try {
            set->LoadConfigurationFile();
            QFAIL("a corrupt file was accepted");
        } catch (const ProgramError &error) {
            QCOMPARE(error.number(), ProgramError::kProgramErrorNumber);
            QCOMPARE(error.source(), QStringLiteral("dlgMain.BuildConfigurations < "
                                                    "dlgMain.LoadConfigurationFile"));
        }
        QCOMPARE(set->ConfigurationCount(), 0);
        QCOMPARE(set->monitor(0).DriverState(), 0);
        QCOMPARE(readBytes(path()), content);
        QCOMPARE(folderEntries().size(), 1);

        // The next save replaces the bad file, and the dated copy holds the new content.
        save(*set);
        QCOMPARE(readBytes(path()), QByteArray("<Configurations/>"));
        QCOMPARE(readBytes(datedCopy("261114220509")), QByteArray("<Configurations/>"));
    }

    void caseOnlyChangeIsNotSaved()
    {
        const QByteArray stored = "<Configurations><Configuration><Equipment Name=\"press 1\" "
                                  "Settings=\"IP:welder:1000\"/></Configuration></Configurations>";
        writeBytes(path(), stored);
        auto set = makeSet();
        const QString changedCase = QString::fromUtf8(stored).replace("press", "PRESS");
        QVERIFY(!set->IsDirty(changedCase));
        QVERIFY(set->WriteConfigurationFile(changedCase));
        QCOMPARE(readBytes(path()), stored);
        QCOMPARE(folderEntries().size(), 1);

        const QString changedPort = QString::fromUtf8(stored).replace("1000", "1001");
        QVERIFY(set->IsDirty(changedPort));
        QVERIFY(set->WriteConfigurationFile(changedPort));
        QCOMPARE(readBytes(path()), changedPort.toUtf8());
        QCOMPARE(folderEntries().size(), 2);
    }

    void fileEncoding_data()
    {
        QTest::addColumn<QByteArray>("nameBytes");
        QTest::newRow("utf-8") << QByteArray("Schwei\xc3\x9f"
                                             "en 2");
        QTest::newRow("8-bit") << QByteArray("Schwei\xdf"
                                             "en 2");
    }

    void fileEncoding()
    {
        QFETCH(QByteArray, nameBytes);
        writeBytes(path(), "<Configurations><Configuration><Equipment Name=\"" + nameBytes +
                               "\"/></Configuration></Configurations>");
        auto set = makeSet();
        QVERIFY(set->LoadConfigurationFile());
        QCOMPARE(set->tabs().value(0).caption, QStringLiteral("Schweißen 2"));
    }

    void missingFolderPassesFailuresOn()
    {
        auto set = makeSet(m_folder.filePath(QStringLiteral("absent/corvane-monitor.cfg")));
        try {
            set->WriteConfigurationFile(QStringLiteral("<Configurations/>"));
            QFAIL("writing into a missing folder succeeded");
        } catch (const ProgramError &error) {
            QCOMPARE(error.number(), ProgramError::kPathNotFound);
            QCOMPARE(error.source(), QStringLiteral("dlgMain.ReadConfigurationFile < "
                                                    "dlgMain.IsDirty < "
                                                    "dlgMain.WriteConfigurationFile"));
        }
        // Without a configurations path, nothing of the monitors is offered for saving.
        auto pathless = makeSet(QString());
        pathless->AddConfiguration(configuration("A"));
        QCOMPARE(xmlText(pathless->GetXMLNode()), QStringLiteral("<Configurations/>"));
    }

    void tabSelection()
    {
        auto set = makeSet();
        for (const char *name : {"A", "B", "C", "D"})
            set->AddConfiguration(configuration(QLatin1String(name)));
        QSignalSpy current(set.get(), &ConfigurationSet::currentTabChanged);

        QVERIFY_THROWS_EXCEPTION(ProgramError, set->setTabCaption(4, QStringLiteral("E")));
        set->ActivateConfiguration(QStringLiteral("key-2"));
        QCOMPARE(set->currentTab(), 2);
        QCOMPARE(set->GetTab(QString())->caption, QStringLiteral("C"));
        QCOMPARE(set->GetConfigurationIndex(QString()), 2);
        set->ActivateConfiguration(QStringLiteral("no such key"));
        QCOMPARE(set->currentTab(), 2);
        QVERIFY(set->GetTab(QStringLiteral("KEY-2")) == nullptr);

        // Removing a middle tab selects its right-hand neighbour; the last, the new last.
        set->removeTab(2);
        QCOMPARE(set->GetTab(QString())->caption, QStringLiteral("D"));
        set->removeTab(2);
        QCOMPARE(set->GetTab(QString())->caption, QStringLiteral("B"));
        // Removing a tab left of the selection keeps the same tab selected.
        set->removeTab(0);
        QCOMPARE(set->GetTab(QString())->caption, QStringLiteral("B"));
        QCOMPARE(set->currentTab(), 0);
        set->removeTab(0);
        QCOMPARE(set->currentTab(), -1);
        QCOMPARE(current.last().first().toInt(), -1);
        QVERIFY_THROWS_EXCEPTION(ProgramError, set->removeTab(0));
    }

    // With the real equipment monitor, an unchanged file is not rewritten at exit: the
    // text it is compared with must not depend on the order in which the DOM of this run
    // happens to keep each element's attributes.
    void realMonitorKeepsAnUnchangedFile()
    {
        RecordingErrorReport errors;
        EventLog eventLog(m_folder.filePath(QStringLiteral("events.log")), m_clock);
        const auto makeMonitor = [&](int) -> std::unique_ptr<ConfigurationMonitor> {
            MonitorServices services{.errors = errors,
                                     .eventLog = eventLog,
                                     .clock = m_clock,
                                     .measurementSystem = MeasurementSystem::Metric,
                                     .debugMode = false,
                                     .makeSocket = nullptr,
                                     .makeSerialPort = nullptr,
                                     .makeSampling = nullptr};
            return std::make_unique<EquipmentMonitorSlot>(
                std::make_unique<EquipmentMonitor>(std::move(services)));
        };
        const auto fileWith = [](const QString &equipment) {
            QString text = QStringLiteral("<Configurations><Configuration>") + equipment +
                           QStringLiteral("<DataLogging Enable=\"1\" File=\"/tmp/p7.txt\"/>");
            for (int row = 0; row < EquipmentMonitor::kRowCount; ++row)
                text +=
                    QStringLiteral("<List Index=\"%1\" ItemData=\"%2\"/>").arg(row).arg(row + 1);
            return (text + QStringLiteral("</Configuration></Configurations>")).toUtf8();
        };

        const QByteArray current = fileWith(
            QStringLiteral("<Equipment Name=\"Press 7\" Settings=\"IP:192.0.2.5:3001\"/>"));
        writeBytes(path(), current);
        {
            ConfigurationSet set(path(), m_clock, m_language, makeMonitor);
            QVERIFY(set.LoadConfigurationFile());
            QCOMPARE(set.tabs().value(0).caption, QStringLiteral("Press 7"));
            QCOMPARE(set.GetConfigurationIndex(set.tabs().first().key), 0);
            QCOMPARE(set.monitor(0).condition(), WelderCondition::Stopped);
            save(set);
        }
        QVERIFY(errors.isEmpty());
        QCOMPARE(readBytes(path()), current);
        QCOMPARE(folderEntries().size(), 1);

        // The older address form is written back once, in the current form.
        writeBytes(path(),
                   fileWith(QStringLiteral(
                       "<Equipment Address=\"192.0.2.5\" Name=\"Press 7\" Port=\"3001\"/>")));
        ConfigurationSet set(path(), m_clock, m_language, makeMonitor);
        QVERIFY(set.LoadConfigurationFile());
        save(set);
        QCOMPARE(readBytes(path()), current);
        QCOMPARE(readBytes(datedCopy("261114220509")), current);
    }
};

QTEST_GUILESS_MAIN(TestConfigurationSet)
#include "tst_configurationset.moc"
