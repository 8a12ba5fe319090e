#include "TestSuites.h"

#include "stats/NumberPicture.h"

#include <QTest>

#include <cmath>
#include <limits>

// Format pictures of the values, limits and figures that the engineer reads.
class TestNumberPicture : public QObject
{
    Q_OBJECT

private slots:
    void pictures_data()
    {
        QTest::addColumn<QString>("picture");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("localeName");
        QTest::addColumn<QString>("expected");

        const QString c = QStringLiteral("C");
        const QString de = QStringLiteral("de_DE");
        QTest::newRow("negative") << "0.0000" << -12.5 << c << "-12.5000";
        QTest::newRow("half rounds away from zero") << "0.0" << 2.25 << c << "2.3";
        QTest::newRow("decimal text rounds as written") << "0.00" << 2.675 << c << "2.68";
        QTest::newRow("carry into a new digit") << "0.0" << 99.96 << c << "100.0";
        QTest::newRow("rounded to zero loses its sign") << "0.0000" << -0.00004 << c << "0.0000";
        QTest::newRow("just not zero keeps its sign") << "0.0000" << -0.00005 << c << "-0.0001";
        QTest::newRow("no grouping unless asked") << "0.00" << 1234567.891 << c << "1234567.89";
        QTest::newRow("grouping") << "#,##0.00" << 1234567.891 << c << "1,234,567.89";
        QTest::newRow("optional decimals used") << "0.0#" << 1.25 << c << "1.25";
        QTest::newRow("optional integer digit") << "#.00" << 0.5 << c << ".50";
        QTest::newRow("literal text kept") << "0.0 mm" << 5.0 << c << "5.0 mm";
        QTest::newRow("regional separator") << "0.0" << 5.25 << de << "5,3";
        QTest::newRow("regional grouping") << "#,##0.0" << 1234.5 << de << "1.234,5";
        QTest::newRow("general form") << "" << 0.1 << c << "0.1";
        QTest::newRow("general form, 15 digits") << "" << 1.0 / 3 << c << "0.333333333333333";
        QTest::newRow("general form without grouping") << "" << 1234567.0 << de << "1234567";
        QTest::newRow("no placeholder is the general form") << "abc" << 1.5 << c << "1.5";
    }

    void pictures()
    {
        QFETCH(QString, picture);
        QFETCH(double, value);
        QFETCH(QString, localeName);
        QFETCH(QString, expected);
        const QLocale locale(localeName);
        QCOMPARE(NumberPicture(picture).format(value, locale), expected);
        QCOMPARE(formatNumber(value, picture, locale), expected);
    }

    // A picture kept by a meter formats many values without carrying anything over; a
    // value that is no number has nothing to round and reads as the general text.
    void onePictureFormatsManyValues()
    {
        const NumberPicture picture(QStringLiteral("0.0000"));
        const QLocale c(QLocale::C);
        QCOMPARE(picture.format(99.99999, c), QStringLiteral("100.0000"));
        QCOMPARE(picture.format(-3.14159, c), QStringLiteral("-3.1416"));
        QCOMPARE(picture.decimalsShown(), 4);
        QVERIFY(!picture.isGeneral() && NumberPicture().isGeneral());
        QCOMPARE(picture.format(std::numeric_limits<double>::quiet_NaN(), c),
                 c.toString(std::numeric_limits<double>::quiet_NaN()));
        QCOMPARE(picture.format(std::numeric_limits<double>::infinity(), c),
                 c.toString(std::numeric_limits<double>::infinity()));
    }
};

CORVANE_TEST_SUITE(TestNumberPicture)
#include "tst_numberpicture.moc"
