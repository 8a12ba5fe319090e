// The monitor's "Configuration" element: what GetXMLNode writes and what Load reads back,
// including the older equipment form and the rows.

#include "MonitorFixture.h"
#include "TestSuites.h"

#include "monitor/SamplingSeam.h"

#include <QSignalSpy>
#include <QTest>

namespace {

// A sampling object that writes and reads one attribute of its "Sampling" element.
class AttributeSampling : public NullSampling
{
public:
    QDomElement GetXMLNode(QDomDocument &document) override
    {
        QDomElement element = document.createElement(QStringLiteral("Sampling"));
        element.setAttribute(QStringLiteral("SubgroupSize"), subgroupSize);
        return element;
    }
    void SetXMLNode(const QDomElement &configuration) override
    {
        ++reads;
        const QDomElement element = configuration.firstChildElement(QStringLiteral("Sampling"));
        if (element.hasAttribute(QStringLiteral("SubgroupSize")))
            subgroupSize = element.attribute(QStringLiteral("SubgroupSize")).toInt();
    }
    bool Enabled() const override { return subgroupSize > 1; }

    int subgroupSize = 1;
    int reads = 0;
};

// Makes the monitor's sampling object and keeps a pointer to the last one made.
struct SamplingMaker
{
    std::unique_ptr<SamplingSeam> operator()()
    {
        auto object = std::make_unique<AttributeSampling>();
        *made = object.get();
        return object;
    }
    AttributeSampling **made;
};

QString xmlOf(const QDomElement &element)
{
    QString text;
    QTextStream stream(&text);
    element.save(stream, -1);
    return text;
}

// The element in a form that ignores attribute order, which XML leaves open:
// tag[name=value,...]{children}.
QString canonical(const QDomElement &element)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i) {
        const QDomAttr attribute = map.item(i).toAttr();
        attributes.append(attribute.name() + u'=' + attribute.value());
    }
    attributes.sort();
    QString text = element.tagName() + u'[' + attributes.join(u',') + u']';
    QStringList children;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        children.append(canonical(child));
    if (!children.isEmpty())
        text += u'{' + children.join(u';') + u'}';
    return text;
}

QString canonical(const QString &xml)
{
    QDomDocument document;
    document.setContent(xml);
    return canonical(document.documentElement());
}

} // namespace

class tst_MonitorConfig : public QObject
{
    Q_OBJECT

private slots:
    // The exact element written, and what a second monitor loads from it.
    void writesTheElementLayoutAndReadsItBack()
    {
        AttributeSampling *sampling = nullptr;
        const SamplingMaker makeSampling{&sampling};
        MonitorFixture f(false, MeasurementSystem::Metric, makeSampling);
        f.configure(QStringLiteral("COM:3,9600,E,8,1,2"), true);
        f.monitor->setRowSelection(1, 7);
        f.monitor->setRowSelection(7, 2);
        sampling->subgroupSize = 5;
        const QString expected =
            QStringLiteral("<Configuration>"
                           "<Equipment Name=\"Line 4\" Settings=\"COM:3,9600,E,8,1,2\"/>"
                           "<DataLogging Enable=\"1\" File=\"%1\"/>"
                           "<Sampling SubgroupSize=\"5\"/>"
                           "<List Index=\"0\" ItemData=\"0\"/><List Index=\"1\" ItemData=\"7\"/>"
                           "<List Index=\"2\" ItemData=\"0\"/><List Index=\"3\" ItemData=\"0\"/>"
                           "<List Index=\"4\" ItemData=\"0\"/><List Index=\"5\" ItemData=\"0\"/>"
                           "<List Index=\"6\" ItemData=\"0\"/><List Index=\"7\" ItemData=\"2\"/>"
                           "</Configuration>")
                .arg(f.dataLogPath());
        QCOMPARE(canonical(f.monitor->GetXMLNode()), canonical(expected));

        MonitorFixture second(false, MeasurementSystem::Metric, makeSampling);
        second.monitor->Initialize(second.language, 1);
        QVERIFY(second.monitor->Load(xmlOf(f.monitor->GetXMLNode())));
        QCOMPARE(sampling->reads, 1);
        QCOMPARE(sampling->subgroupSize, 5);
        QVERIFY(second.monitor->SPCSamplingEnabled());
        QCOMPARE(second.monitor->configurationName(), QStringLiteral("Line 4"));
        QCOMPARE(second.monitor->configuration().dataLogFile, f.dataLogPath());
        QCOMPARE(canonical(second.monitor->GetXMLNode()), canonical(expected));

        // Without SPC sampling no Sampling element is written at all.
        MonitorFixture plain;
        plain.configure(QStringLiteral("IP:h:1"));
        const QDomElement written = plain.monitor->GetXMLNode();
        QVERIFY(written.firstChildElement(QStringLiteral("Sampling")).isNull());
        QCOMPARE(written.firstChildElement(QStringLiteral("DataLogging")).attribute("Enable"), "0");
    }

    void olderEquipmentForm()
    {
        MonitorFixture f;
        f.monitor->Initialize(f.language, 0);
        QVERIFY(f.monitor->Load(QStringLiteral(
            "<Configuration><Equipment Name=\"Horn 2\" Address=\"192.0.2.5\" Port=\"3001\"/>"
            "</Configuration>")));
        QCOMPARE(f.monitor->address(), QStringLiteral("IP:192.0.2.5:3001"));
        const QDomElement equipment =
            f.monitor->GetXMLNode().firstChildElement(QStringLiteral("Equipment"));
        QCOMPARE(equipment.attribute(QStringLiteral("Settings")),
                 QStringLiteral("IP:192.0.2.5:3001"));
        QVERIFY(!equipment.hasAttribute(QStringLiteral("Address")));
        QVERIFY(!equipment.hasAttribute(QStringLiteral("Port")));

        QVERIFY(f.monitor->Load(
            QStringLiteral("<Configuration><Equipment Address=\"welder\"/></Configuration>")));
        QCOMPARE(f.monitor->address(), QStringLiteral("IP:welder:1000"));
        QCOMPARE(f.monitor->configurationName(), QString());
    }

    void rowsAndDefaults_data()
    {
        QTest::addColumn<QString>("lists");
        QTest::addColumn<QList<int>>("rows");
        QTest::newRow("in order")
            << "<List Index=\"0\" ItemData=\"4\"/><List Index=\"7\" ItemData=\"1\"/>"
            << QList<int>{4, 0, 0, 0, 0, 0, 0, 1};
        QTest::newRow("beyond the rows, unknown characteristic")
            << "<List Index=\"8\" ItemData=\"4\"/><List Index=\"-1\" ItemData=\"2\"/>"
               "<List Index=\"2\" ItemData=\"9\"/>"
            << QList<int>{0, 0, 0, 0, 0, 0, 0, 0};
        QTest::newRow("later wins")
            << "<List Index=\"2\" ItemData=\"5\"/><List Index=\"2\" ItemData=\"6\"/>"
            << QList<int>{0, 0, 6, 0, 0, 0, 0, 0};
    }

    void rowsAndDefaults()
    {
        QFETCH(QString, lists);
        QFETCH(QList<int>, rows);
        MonitorFixture f;
        f.monitor->Initialize(f.language, 0);
        for (int row = 0; row < EquipmentMonitor::kRowCount; ++row)
            f.monitor->setRowSelection(row, 0);
        QVERIFY(f.monitor->Load(QStringLiteral("<Configuration>") + lists +
                                QStringLiteral("</Configuration>")));
        QList<int> loaded;
        for (int row = 0; row < EquipmentMonitor::kRowCount; ++row)
            loaded.append(f.monitor->rowSelection(row));
        QCOMPARE(loaded, rows);
    }

    void enableReadAsBoolean_data()
    {
        QTest::addColumn<QString>("element");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QString>("written");
        QTest::newRow("1") << "<DataLogging Enable=\"1\" File=\"a.txt\"/>" << true << "1";
        QTest::newRow("0") << "<DataLogging Enable=\"0\" File=\"a.txt\"/>" << false << "0";
        QTest::newRow("false") << "<DataLogging Enable=\"False\" File=\"a.txt\"/>" << false << "0";
        QTest::newRow("true") << "<DataLogging Enable=\"TRUE\" File=\"a.txt\"/>" << true << "1";
        QTest::newRow("missing keeps") << "<DataLogging File=\"a.txt\"/>" << true << "1";
    }

    void enableReadAsBoolean()
    {
        QFETCH(QString, element);
        QFETCH(bool, enabled);
        QFETCH(QString, written);
        MonitorFixture f;
        f.configure(QStringLiteral("IP:h:1"), true);
        QVERIFY(f.monitor->Load(QStringLiteral("<Configuration>") + element +
                                QStringLiteral("</Configuration>")));
        QCOMPARE(f.monitor->configuration().dataLoggingEnabled, enabled);
        QCOMPARE(f.monitor->configuration().dataLogFile, QStringLiteral("a.txt"));
        QCOMPARE(f.monitor->GetXMLNode().firstChildElement("DataLogging").attribute("Enable"),
                 written);
    }

    void malformedTextChangesOnlyTheLinkState_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::newRow("not XML") << "<Configuration><Equipment Name=\"x\"";
        QTest::newRow("no Configuration")
            << "<Other><Equipment Name=\"x\" Settings=\"IP:a:1\"/></Other>";
    }

    void malformedTextChangesOnlyTheLinkState()
    {
        QFETCH(QString, xml);
        AttributeSampling *sampling = nullptr;
        MonitorFixture f(false, MeasurementSystem::Metric, SamplingMaker{&sampling});
        f.configure(QStringLiteral("IP:h:1"), true);
        f.monitor->setRowSelection(4, 4);
        QVERIFY(f.monitor->ShutDown());
        f.monitor->setRowSelection(4, 4);
        QCOMPARE(f.monitor->DriverState(), 0);
        const QString before = canonical(f.monitor->GetXMLNode());
        QSignalSpy refreshes(f.monitor.get(), &EquipmentMonitor::displayRefreshRequested);

        QVERIFY(f.monitor->Load(xml));

        QCOMPARE(f.monitor->DriverState(), 1);
        QCOMPARE(refreshes.size(), 1);
        QCOMPARE(canonical(f.monitor->GetXMLNode()), before);
        QCOMPARE(sampling->reads, 0);
        QVERIFY(f.errors.isEmpty());
    }
};

CORVANE_TEST_SUITE(tst_MonitorConfig)
#include "tst_monitorconfig.moc"
