#include "DialogFixture.h"

#include "dialogs/dlgIPSetup.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>

namespace {

const char *const kSerialLists[] = {"cmboComPort",  "cmboBaudRate", "cmboParity",
                                    "cmboDataBits", "cmboStopBits", "cmboFlowControl"};

// What the form shows for the chosen type, joined by "|".
QString showing(dlgIPSetup &dialog)
{
    QStringList texts;
    if (control<QComboBox>(&dialog, "cmboCommunicationsType")->currentIndex() ==
        dlgIPSetup::SerialType) {
        for (const char *list : kSerialLists)
            texts.append(control<QComboBox>(&dialog, list)->currentText());
    } else {
        texts = {control<QLineEdit>(&dialog, "txtHost")->text(),
                 control<QLineEdit>(&dialog, "txtPort")->text()};
    }
    return texts.join(u'|');
}

bool shown(dlgIPSetup &dialog, const char *group)
{
    return control<QGroupBox>(&dialog, group)->isVisibleTo(&dialog);
}

} // namespace

// The communications setup as the engineer fills it in: the settings text it opens
// with, what OK refuses, and the settings text it hands back.
class TestIPSetup : public QObject
{
    Q_OBJECT

private slots:
    void settingsTextRoundTrips_data()
    {
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("shows");
        QTest::newRow("serial") << QString("COM:3,9600,E,8,1,2")
                                << QString("3|9600|E (Even)|8|1|CTS/RTS");
        QTest::newRow("serial device by path, both flow controls")
            << QString("COM:/dev/ttyUSB7,256000,S,7,1.5,3")
            << QString("/dev/ttyUSB7|256000|S (Space)|7|1.5|CTS/RTS + XON/XOFF");
        QTest::newRow("TCP/IP") << QString("IP:plc1:502") << QString("plc1|502");
    }

    void settingsTextRoundTrips()
    {
        QFETCH(QString, settings);
        QFETCH(QString, shows);
        DialogFixture fixture;
        dlgIPSetup dialog(fixture.language, fixture.services());
        dialog.RefreshSettings(settings);
        dialog.show();
        QCOMPARE(showing(dialog), shows);
        // Only the group of the chosen type is shown.
        QCOMPARE(shown(dialog, "gbSerial"), settings.startsWith(u"COM:"));
        QCOMPARE(shown(dialog, "gbTCPIP"), settings.startsWith(u"IP:"));

        click(&dialog, "OKButton");
        QVERIFY(fixture.messages.isEmpty());
        QVERIFY(dialog.isAccepted());
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.settingsText(), settings);
    }

    void serialChoicesBuildTheSettingsText()
    {
        DialogFixture fixture;
        dlgIPSetup dialog(fixture.language, fixture.services());
        dialog.setEquipmentName(QStringLiteral("Line 4"));
        dialog.RefreshSettings(QStringLiteral("IP:plc1:502"));
        dialog.show();
        retype(control<QLineEdit>(&dialog, "txtName"), QStringLiteral("Press 7"));
        control<QComboBox>(&dialog, "cmboCommunicationsType")->setCurrentIndex(0);
        QVERIFY(shown(dialog, "gbSerial") && !shown(dialog, "gbTCPIP"));
        // From the defaults (1, 9600, N, 8, 1, none) to port 3, even parity, CTS/RTS.
        control<QComboBox>(&dialog, "cmboComPort")->setCurrentText(QStringLiteral("3"));
        control<QComboBox>(&dialog, "cmboParity")->setCurrentIndex(2);
        control<QComboBox>(&dialog, "cmboFlowControl")->setCurrentIndex(2);
        click(&dialog, "OKButton");
        QCOMPARE(dialog.settingsText(), QStringLiteral("COM:3,9600,E,8,1,2"));
        QCOMPARE(dialog.equipmentName(), QStringLiteral("Press 7"));
    }

    void invalidInputKeepsTheDialogOpen_data()
    {
        QTest::addColumn<QString>("settings");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        const QString address("Invalid Value: IP Address\r\nExample: 192.169.4.3");
        const QString port("Invalid Value: IP Port\r\nExample: 1000");
        const QString tcp("IP:plc1:502"), host("txtHost"), portField("txtPort");
        QTest::newRow("empty host") << tcp << host << QString() << address;
        QTest::newRow("host with a colon") << tcp << host << QString("plc:1") << address;
        QTest::newRow("port abc") << tcp << portField << QString("abc") << port;
        QTest::newRow("port beyond 65535") << tcp << portField << QString("70000") << port;
        QTest::newRow("empty COM port")
            << QString("COM:3,9600,E,8,1,2") << QString("cmboComPort") << QString()
            << QString("Invalid Value: COM Port\r\nExample: 1");
    }

    void invalidInputKeepsTheDialogOpen()
    {
        QFETCH(QString, settings);
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        DialogFixture fixture;
        dlgIPSetup dialog(fixture.language, fixture.services());
        dialog.RefreshSettings(settings);
        dialog.show();
        auto *edit = dialog.findChild<QLineEdit *>(field);
        if (!edit)
            edit = control<QComboBox>(&dialog, "cmboComPort")->lineEdit();
        retype(edit, typed);

        click(&dialog, "OKButton");
        QCOMPARE(fixture.messages.count(), 1);
        QCOMPARE(fixture.messages.last().text, message);
        QVERIFY(dialog.isVisible());
        QVERIFY(!dialog.isAccepted());
        // Cancel then hands nothing back.
        click(&dialog, "CancelButton");
        QVERIFY(!dialog.isVisible());
        QVERIFY(!dialog.isAccepted());
        QCOMPARE(dialog.settingsText(), settings);
    }

    void unknownOrEmptySettingsKeepTheDefaults()
    {
        DialogFixture fixture;
        dlgIPSetup dialog(fixture.language, fixture.services());
        dialog.RefreshSettings(QStringLiteral("COM:3,9600,E,8,1,2"));
        dialog.RefreshSettings(QStringLiteral("MODBUS:7"));
        QCOMPARE(showing(dialog), QStringLiteral("|"));
        control<QComboBox>(&dialog, "cmboCommunicationsType")->setCurrentIndex(0);
        QCOMPARE(showing(dialog), QStringLiteral("1|9600|N (None)|8|1|None"));

        // An empty text stands for the address of the dialog's own socket, which has
        // connected nowhere yet: the port field opens empty, not with a refused "0".
        dialog.RefreshSettings(QString());
        QCOMPARE(dialog.settingsText(), QStringLiteral("IP::0"));
        QCOMPARE(showing(dialog), QStringLiteral("|"));
    }

    void addressFieldsSelectTheirTextOnFocus()
    {
        DialogFixture fixture;
        dlgIPSetup dialog(fixture.language, fixture.services());
        dialog.RefreshSettings(QStringLiteral("IP:plc1:502"));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        auto *host = control<QLineEdit>(&dialog, "txtHost");
        QTest::mouseClick(host, Qt::LeftButton, {}, QPoint(5, host->height() / 2));
        QTRY_COMPARE(host->selectedText(), QStringLiteral("plc1"));
        // Typing replaces the whole address.
        QTest::keyClicks(host, QStringLiteral("plc2"));
        QCOMPARE(host->text(), QStringLiteral("plc2"));
    }
};

QTEST_MAIN(TestIPSetup)
#include "tst_ipsetup.moc"
