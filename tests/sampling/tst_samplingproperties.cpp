#include "SamplingDoubles.h"
#include "TestSuites.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

namespace {

// One monitor's sampling settings.
struct Settings : SamplingBench
{
    using SamplingBench::SamplingBench;

    // Reads the "Sampling" element out of a "Configuration" element's text.
    void load(const QString &samplingXml)
    {
        QDomDocument document;
        QVERIFY(document.setContent(
            QStringLiteral("<Configuration>%1</Configuration>").arg(samplingXml)));
        sampling.SetXMLNode(document.documentElement());
    }

    QString saved()
    {
        QDomDocument document;
        document.appendChild(sampling.GetXMLNode(document));
        return document.toString(-1);
    }
};

void fillEveryField(SamplingProperties &sampling)
{
    sampling.setEnabled(false); // no connection wanted
    sampling.setDataSourceName(QStringLiteral("sqlite:/plant/line3.db"));
    sampling.setPart(QStringLiteral("Housing <A&B>"));
    sampling.setAllowPartReselect(true);
    sampling.setProcess(QStringLiteral("Seal \"weld\""));
    sampling.setSamplingPeriod(3600);
    sampling.setCollectionType(1);
    sampling.setSubgroupSize(5);
    sampling.setEnableAlarmLogging(true);
    sampling.setLogAlarms(127);
}

QList<QVariant> fields(const SamplingProperties &sampling)
{
    return {sampling.Enabled(),           sampling.DataSourceName(), sampling.Part(),
            sampling.AllowPartReselect(), sampling.Process(),        sampling.SamplingPeriod(),
            sampling.CollectionType(),    sampling.SubgroupSize(),   sampling.EnableAlarmLogging(),
            sampling.LogAlarms()};
}

// An element as text: its tag, its attributes in name order (the DOM keeps no order
// of attributes), and its children in their order.
QString describe(const QDomElement &element)
{
    QStringList attributes;
    const QDomNamedNodeMap all = element.attributes();
    for (int i = 0; i < all.count(); ++i)
        attributes << all.item(i).nodeName() + u'=' + all.item(i).nodeValue();
    attributes.sort();
    QString text = element.tagName() + u'(' + attributes.join(u' ') + u')';
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        text += u' ' + describe(child);
    return text;
}

} // namespace

// The "Sampling" element of a monitor's configuration: its exact layout, what a reader
// does with missing or odd attributes, and when loading connects to the database.
class TestSamplingProperties : public QObject
{
    Q_OBJECT

private slots:
    void newObjectWritesDefaultsAndReadsBack()
    {
        Settings settings;
        QDomDocument document;
        QCOMPARE(describe(settings.sampling.GetXMLNode(document)),
                 QStringLiteral("Sampling(CollectionType=0 EnableAlarmLogging=False Enabled=False "
                                "LogAlarms=0 SamplingPeriod=300 SubgroupSize=1) "
                                "Database(DSN=%1) Part(Name= Reselect=False) Process(Name=)")
                     .arg(QDir(settings.folder.path()).filePath("spc.db")));

        // What is written reads back the same.
        fillEveryField(settings.sampling);
        Settings reader;
        reader.load(settings.saved());
        QCOMPARE(fields(reader.sampling), fields(settings.sampling));
        QVERIFY(settings.errors.isEmpty() && reader.errors.isEmpty());
    }

    void missingAttributesKeepTheirFields()
    {
        Settings settings;
        fillEveryField(settings.sampling);
        const QList<QVariant> before = fields(settings.sampling);
        settings.load(QString()); // a configuration from before sampling existed
        settings.load(QStringLiteral("<Sampling/>"));
        settings.load(QStringLiteral("<Sampling><Database/><Part/><Process/></Sampling>"));
        QCOMPARE(fields(settings.sampling), before);

        settings.load(
            QStringLiteral("<Sampling SubgroupSize=\"7\"><Part Name=\"Cover\"/></Sampling>"));
        QList<QVariant> expected = before;
        expected[2] = QStringLiteral("Cover");
        expected[7] = 7;
        QCOMPARE(fields(settings.sampling), expected);
        QVERIFY(settings.errors.isEmpty());
    }

    void attributeTexts_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<bool>("alarmLogging");
        QTest::addColumn<int>("subgroupSize");
        QTest::addColumn<int>("errorNumber");
        // The fields start as alarm logging on and subgroup size 5.
        QTest::newRow("words in any case")
            << "EnableAlarmLogging=\"fALSE\" SubgroupSize=\" 42 \"" << false << 42 << 0;
        QTest::newRow("other numbers") << "EnableAlarmLogging=\"-1\"" << true << 5 << 0;
        QTest::newRow("fraction rounds") << "SubgroupSize=\"2.5\"" << true << 2 << 0;
        QTest::newRow("not a number") << "EnableAlarmLogging=\"False\" SubgroupSize=\"five\""
                                      << false << 5 << int(ProgramError::kTypeMismatch);
        QTest::newRow("too large")
            << "SubgroupSize=\"2147483648\"" << true << 5 << int(ProgramError::kOverflow);
    }
    void attributeTexts()
    {
        QFETCH(QString, xml);
        QFETCH(bool, alarmLogging);
        QFETCH(int, subgroupSize);
        QFETCH(int, errorNumber);
        Settings settings;
        settings.sampling.setEnableAlarmLogging(true);
        settings.sampling.setSubgroupSize(5);
        settings.load(QStringLiteral("<Sampling %1 LogAlarms=\"12\"/>").arg(xml));
        QCOMPARE(settings.sampling.EnableAlarmLogging(), alarmLogging);
        QCOMPARE(settings.sampling.SubgroupSize(), subgroupSize);
        // A bad number costs only its own field.
        QCOMPARE(settings.sampling.LogAlarms(), 12);
        QCOMPARE(settings.errors.count(), errorNumber ? 1 : 0);
        if (errorNumber) {
            QCOMPARE(settings.errors.last().number, errorNumber);
            QCOMPARE(settings.errors.last().location,
                     QStringLiteral("SamplingProperties.SetXMLNode"));
            QVERIFY(settings.errors.last().description.contains(QLatin1String("SubgroupSize")));
        }
    }

    void dataSourceNameIsHandedToTheDatabase()
    {
        Settings settings;
        const QString byDefault = QDir(settings.folder.path()).filePath(QStringLiteral("spc.db"));
        qlaDatabase6::Database &database = settings.sampling.database();
        QCOMPARE(database.dataSourceName(), byDefault);
        settings.load(
            QStringLiteral("<Sampling><Database DSN=\"sqlite:/plant/a.db\"/></Sampling>"));
        QCOMPARE(database.dataSourceName(), QStringLiteral("sqlite:/plant/a.db"));
        settings.load(QStringLiteral("<Sampling><Database DSN=\"\"/></Sampling>"));
        QCOMPARE(database.dataSourceName(), byDefault);
        // Sampling is off: loading never opened the database, so its file was not made.
        QVERIFY(!QFile::exists(byDefault));
    }

    void loadingConnectsOnlyWhenEnabled()
    {
        Settings settings;
        const QString file = settings.folder.filePath(QStringLiteral("line3.db"));
        settings.load(
            QStringLiteral("<Sampling Enabled=\"False\"><Database DSN=\"%1\"/></Sampling>")
                .arg(file));
        QVERIFY(!settings.sampling.database().isConnected());
        QVERIFY(!QFile::exists(file));

        // A failed connection is reported; the settings are loaded all the same.
        settings.load(QStringLiteral("<Sampling Enabled=\"True\" SubgroupSize=\"9\">"
                                     "<Database DSN=\"/nonexistent-corvane/spc.db\"/>"
                                     "<Process Name=\"Seal weld\"/></Sampling>"));
        QVERIFY(!settings.sampling.database().isConnected());
        QCOMPARE(settings.errors.count(), 1);
        QCOMPARE(settings.errors.last().location, QStringLiteral("SamplingProperties.SetXMLNode"));
        QVERIFY(!settings.errors.last().description.isEmpty());
        QCOMPARE(settings.sampling.SubgroupSize(), 9);
        QCOMPARE(settings.sampling.Process(), QStringLiteral("Seal weld"));
        QVERIFY(settings.boxes.messages.isEmpty());

        settings.load(QStringLiteral("<Sampling><Database DSN=\"%1\"/></Sampling>").arg(file));
        QVERIFY(settings.sampling.database().isConnected());
        QVERIFY(QFile::exists(file));
        QCOMPARE(settings.errors.count(), 1);
        // The same name again keeps the working connection.
        QSignalSpy reconnects(&settings.sampling.database(), &qlaDatabase6::Database::connected);
        settings.load(QStringLiteral("<Sampling><Database DSN=\"%1\"/></Sampling>").arg(file));
        QVERIFY(reconnects.isEmpty() && settings.sampling.database().isConnected());
    }
};

CORVANE_TEST_SUITE(TestSamplingProperties)
#include "tst_samplingproperties.moc"
