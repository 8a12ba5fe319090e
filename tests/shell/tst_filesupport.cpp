#include "ManualClock.h"

#include "platform/EventLog.h"
#include "platform/RegionalFormat.h"
#include "platform/XMLSupport.h"
#include "shell/XmlText.h"

#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// The event log and the XML text of the configurations file.
class TestFileSupport : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    static QByteArray readAll(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void eventLogAppendsLinesInCallOrder()
    {
        ManualClock clock;
        const QString path = m_folder.filePath(QStringLiteral("corvane-monitor.log"));
        QVERIFY(!QFile::exists(path));
        EventLog log(path, clock);
        log.WriteEventLog(QStringLiteral("Main"), QStringLiteral("WinSockError"), 10061,
                          QStringLiteral("Connection refused"), QStringLiteral("SCODE: 10061"));
        clock.advanceSeconds(61);
        log.WriteEventLog(QStringLiteral("Main"), QStringLiteral("Data Log Write"), -2147221504,
                          QStringLiteral("Disk\tfull"), QStringLiteral("/data/press.txt"));

        const QList<QByteArray> lines = readAll(path).split('\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[2].isEmpty());
        const RegionalFormat format;
        const QByteArray first =
            format.dateTime(QDateTime(QDate(2026, 11, 14), QTime(22, 5, 9))).toUtf8() +
            "\tMain\tWinSockError\t10061\tConnection refused\tSCODE: 10061\r";
        QCOMPARE(lines[0], first);
        // A TAB inside the description goes in as it is: the line has seven fields.
        const QList<QByteArray> fields = lines[1].split('\t');
        QCOMPARE(fields.size(), 7);
        QCOMPARE(fields[0], format.dateTime(clock.now()).toUtf8());
        QCOMPARE(fields[2], QByteArray("Data Log Write"));
        QCOMPARE(fields[3], QByteArray("-2147221504"));
        QCOMPARE(fields[4] + '\t' + fields[5], QByteArray("Disk\tfull"));
        QCOMPARE(fields[6], QByteArray("/data/press.txt\r"));
    }

    void attributeHelpers()
    {
        QDomDocument document;
        document.setContent(QStringLiteral("<Configuration><Sampling Enabled=\"True\"><Part "
                                           "Name=\"\"/></Sampling></Configuration>"));
        const QDomElement root = document.documentElement();
        const QDomElement part = XMLSupport::SelectXMLNode(root, "Sampling/Part").toElement();
        QCOMPARE(part.tagName(), QStringLiteral("Part"));
        QVERIFY(XMLSupport::SelectXMLNode(root, "Sampling/Process/Test").isNull());

        // An absent attribute gives the default's text; a present but empty one its value.
        QCOMPARE(XMLSupport::GetXMLAttribute(part, "Revision", 7), QStringLiteral("7"));
        QCOMPARE(XMLSupport::GetXMLAttribute(part, "Name", "default"), QString());
        QCOMPARE(XMLSupport::GetXMLAttribute(part, "Active", true), QStringLiteral("True"));
        // The element itself missing gives the empty text, not the default: kept as it is.
        const QDomElement missing = XMLSupport::SelectXMLNode(root, "Nothing").toElement();
        QCOMPARE(XMLSupport::GetXMLAttribute(missing, "Revision", 7), QString());
        XMLSupport::SetXMLAttribute(missing, "Revision", 8);

        XMLSupport::SetXMLAttribute(part, "Enabled", false);
        XMLSupport::SetXMLAttribute(part, "Period", 2.5);
        QCOMPARE(part.attribute("Enabled"), QStringLiteral("False"));
        QCOMPARE(part.attribute("Period"), QStringLiteral("2.5"));
    }

    void xmlTextIsTheSameOnEveryRun()
    {
        QDomDocument document;
        QDomElement root = document.createElement(QStringLiteral("Configurations"));
        document.appendChild(root);
        QDomElement equipment = document.createElement(QStringLiteral("Equipment"));
        root.appendChild(equipment);
        // Written in the order of the configuration's layout (Name, Settings), then the
        // attributes it does not know by name.
        equipment.setAttribute(QStringLiteral("Settings"), QStringLiteral("IP:10.1.1.9:1000"));
        equipment.setAttribute(QStringLiteral("Name"), QStringLiteral("Horn \"B\" & <C>"));
        equipment.setAttribute(QStringLiteral("Note"), QStringLiteral("line 1\nline 2\tend"));
        equipment.setAttribute(QStringLiteral("Address"), QString());
        root.appendChild(document.createElement(QStringLiteral("Empty")));
        QDomElement text = document.createElement(QStringLiteral("Text"));
        text.appendChild(document.createTextNode(QStringLiteral("a < b & \"c\"")));
        root.appendChild(text);

        const QString expected = QStringLiteral(
            "<Configurations><Equipment Name=\"Horn &quot;B&quot; &amp; &lt;C&gt;\" "
            "Settings=\"IP:10.1.1.9:1000\" Address=\"\" Note=\"line 1&#xa;line 2&#x9;end\"/>"
            "<Empty/>"
            "<Text>a &lt; b &amp; \"c\"</Text></Configurations>");
        QCOMPARE(xmlText(root), expected);

        // Read back, every value is what was set.
        QDomDocument reread;
        QVERIFY(reread.setContent(expected));
        const QDomElement again = reread.documentElement().firstChildElement("Equipment");
        QCOMPARE(again.attribute("Name"), QStringLiteral("Horn \"B\" & <C>"));
        QCOMPARE(again.attribute("Note"), QStringLiteral("line 1\nline 2\tend"));
        QCOMPARE(xmlText(reread.documentElement()), expected);
    }
};

QTEST_GUILESS_MAIN(TestFileSupport)
#include "tst_filesupport.moc"
