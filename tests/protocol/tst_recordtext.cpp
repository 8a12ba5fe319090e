// The data-log line under regional settings: the fast number form against the locale's
// own general form, the ASCII minus, the column count and the once-a-second time text.

#include "platform/RegionalFormat.h"
#include "protocol/CorvaneFUN26.h"
#include "protocol/RecordFormatter.h"

#include <QTest>

class tst_RecordText : public QObject
{
    Q_OBJECT

private slots:
    void numbersInTheRegionalGeneralForm_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("value");
        const char *locales[] = {"en_US", "de_DE", "sv_SE", "fi_FI", "nb_NO", "fr_CH"};
        const double values[] = {-4.448222,    31.3563,   1.2345,         0.0001, 1e-5,
                                 -2147483.648, 0.1 + 0.2, 123456789012.5, 1e14,   -3e20};
        for (const char *locale : locales) {
            for (const double value : values)
                QTest::addRow("%s %g", locale, value) << QString::fromLatin1(locale) << value;
        }
    }

    void numbersInTheRegionalGeneralForm()
    {
        QFETCH(QString, locale);
        QFETCH(double, value);
        QLocale regional(locale);
        regional.setNumberOptions(QLocale::OmitGroupSeparator);
        const QString expected =
            regional.toString(value, 'g', 15).replace(regional.negativeSign(), QString(u'-'));
        const QString text = RegionalFormat(regional).number(value);
        QCOMPARE(text, expected);
        QVERIFY(!text.contains(QChar(0x2212)));
    }

    void lineHasItsColumnsAndATimeTextPerSecond()
    {
        const QLocale swedish(QStringLiteral("sv_SE"));
        const RegionalFormat format(swedish);
        RecordFormatter formatter(format);
        CorvaneFUN26 record;
        record.AcquiredTime = QDateTime(QDate(2026, 3, 29), QTime(1, 59, 59), Qt::UTC);
        record.WeldForceEnd = -4.448222;
        record.CycleModifiedAlarms = qint32(0x80000000);
        const QStringList columns = formatter.format(record).split(u'\t');
        QCOMPARE(columns.size(), CorvaneFUN26::kRecordColumns);
        QCOMPARE(columns.at(0), format.dateTime(record.AcquiredTime.toLocalTime()));
        QCOMPARE(columns.at(25), QStringLiteral("-2147483648"));
        QCOMPARE(columns.at(34), QStringLiteral("-4,448222"));
        QCOMPARE(record.Record(format), formatter.format(record));

        // The next second, and back: the time text follows the record, not the cache.
        const QDateTime first = record.AcquiredTime;
        record.AcquiredTime = first.addMSecs(1000);
        QCOMPARE(formatter.format(record).section(u'\t', 0, 0),
                 format.dateTime(record.AcquiredTime));
        record.AcquiredTime = first.addMSecs(999);
        QCOMPARE(formatter.format(record).section(u'\t', 0, 0), format.dateTime(first));
        record.AcquiredTime = QDateTime();
        QCOMPARE(formatter.format(record).section(u'\t', 0, 0), format.dateTime(QDateTime()));
    }
};

QTEST_GUILESS_MAIN(tst_RecordText)
#include "tst_recordtext.moc"
