#include "SamplingWidgetFixture.h"
#include "ScratchDatabase.h"

#include "platform/spc/PasswordFile.h"
#include "sampling/widgets/dlgDataSource.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

namespace {

// The fields in the order of the data rows: file, server, port, database, user.
const char *const kFields[] = {"txtFile", "txtHost", "txtPort", "txtDatabase", "txtUser"};

QString testResult(QDialog *dialog)
{
    return control<QLabel>(dialog, "lblTestResult")->text();
}

// A shown data source dialog with the fields typed in as a user would; a row without a
// file is a server.
void typeFields(QDialog *dialog, const QStringList &fields)
{
    if (fields[0].isEmpty())
        tick(dialog, "optPostgreSQL");
    for (int index = 0; index < fields.size(); ++index)
        retype(dialog, kFields[index], fields[index]);
}

} // namespace

// The data source dialog: the one line it writes for a file or a server, how it reads a
// stored line back into its fields, and what trying the connection tells the user.
class TestDataSourceDialog : public QObject
{
    Q_OBJECT

private slots:
    void theFieldsMakeTheDataSourceName_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("dsn");
        const auto row = [](const char *name, QStringList fields, const char *dsn) {
            QTest::newRow(name) << fields << QString::fromUtf8(dsn);
        };
        row("file", {"/srv/Corvane/spc.db"}, "/srv/Corvane/spc.db");
        row("blanks around a file", {"  /srv/spc.db "}, "/srv/spc.db");
        // Paths the plain form would take for something else are marked as files.
        row("file like an address", {"odd://spc.db"}, "sqlite:odd://spc.db");
        row("server", {"", "db.plant.local", "", "spc", ""}, "postgresql://db.plant.local/spc");
        row("port and user", {"", "db.plant.local", "5433", "spc", "quality"},
            "postgresql://quality@db.plant.local:5433/spc");
        row("blank in the database", {"", "db", "", "spc line 2", ""},
            "postgresql://db/spc%20line%202");
        row("at sign in the user", {"", "db", "", "spc", "jo@plant"},
            "postgresql://jo%40plant@db/spc");
    }

    void theFieldsMakeTheDataSourceName()
    {
        QFETCH(QStringList, fields);
        QFETCH(QString, dsn);
        SamplingWidgetFixture fixture;
        dlgDataSource dialog(fixture.language, fixture.services());
        dialog.show();
        typeFields(&dialog, fields);
        QCOMPARE(control<QLineEdit>(&dialog, "txtDSN")->text(), dsn);
        click(&dialog, "OKButton");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.dataSourceName(), dsn);
    }

    void incompleteEntriesAreRefused_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no file") << QStringList{" "} << "Choose or type the file";
        QTest::newRow("no server") << QStringList{"", "", "", "spc"} << "address of the SPC";
        QTest::newRow("port too large") << QStringList{"", "db", "70000", "spc"} << "65535";
    }

    void incompleteEntriesAreRefused()
    {
        QFETCH(QStringList, fields);
        QFETCH(QString, reason);
        SamplingWidgetFixture fixture;
        dlgDataSource dialog(fixture.language, fixture.services());
        dialog.setDataSourceName(QStringLiteral("/srv/Corvane/spc.db"));
        dialog.show();
        typeFields(&dialog, fields);
        QVERIFY2(testResult(&dialog).contains(reason), qPrintable(testResult(&dialog)));

        click(&dialog, "OKButton");
        QVERIFY(dialog.isVisible());
        QCOMPARE(fixture.messages.count(), 1);
        QCOMPARE(fixture.messages.last().title, QStringLiteral("SPC Data Source"));
        QVERIFY(fixture.messages.last().text.contains(reason));
        QCOMPARE(dialog.dataSourceName(), QStringLiteral("/srv/Corvane/spc.db"));
    }

    void aStoredNameFillsTheFields_data()
    {
        QTest::addColumn<QString>("dsn");
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("file") << "/srv/spc.db" << QStringList{"/srv/spc.db", "", "", "", ""};
        QTest::newRow("server, all given") << "postgresql://quality@db:5433/spc"
                                           << QStringList{"", "db", "5433", "spc", "quality"};
    }

    void aStoredNameFillsTheFields()
    {
        QFETCH(QString, dsn);
        QFETCH(QStringList, fields);
        SamplingWidgetFixture fixture;
        dlgDataSource dialog(fixture.language, fixture.services());
        dialog.setDataSourceName(dsn);
        dialog.show();

        const bool server = fields[0].isEmpty();
        QCOMPARE(control<QRadioButton>(&dialog, "optPostgreSQL")->isChecked(), server);
        QCOMPARE(control<QLineEdit>(&dialog, "txtHost")->isEnabled(), server);
        QCOMPARE(control<QLineEdit>(&dialog, "txtFile")->isEnabled(), !server);
        for (int index = 0; index < fields.size(); ++index)
            QCOMPARE(control<QLineEdit>(&dialog, kFields[index])->text(), fields[index]);
        // Confirmed unchanged, a plain name comes back as it was, so the monitor's
        // connection is not dropped for nothing.
        click(&dialog, "OKButton");
        QCOMPARE(dialog.dataSourceName(), server ? dsn : fields[0]);
    }

    void noPasswordIsAskedOrKept()
    {
        SamplingWidgetFixture fixture;
        dlgDataSource dialog(fixture.language, fixture.services());
        dialog.show();
        for (QLineEdit *field : dialog.findChildren<QLineEdit *>())
            QVERIFY2(field->echoMode() == QLineEdit::Normal, qPrintable(field->objectName()));
        const QString hint = control<QLabel>(&dialog, "lblPasswordHint")->text();
        QVERIFY(hint.contains(QStringLiteral("PGPASSWORD")));
        QVERIFY(hint.contains(QDir::toNativeSeparators(qlaDatabase6::PasswordFile::defaultPath())));

        // A stored name with a password is not taken over into the fields.
        dialog.setDataSourceName(QStringLiteral("postgresql://quality:secret@db/spc"));
        QVERIFY(testResult(&dialog).contains(QStringLiteral("password")));
        for (const char *field : kFields)
            QVERIFY(!control<QLineEdit>(&dialog, field)->text().contains(QStringLiteral("secret")));
    }

    void testingAFile()
    {
        SamplingWidgetFixture fixture;
        QVERIFY(SamplingWidgetFixture::fillDatabase(fixture.databasePath()));
        dlgDataSource dialog(fixture.language, fixture.services());
        dialog.setDataSourceName(fixture.databasePath());
        dialog.show();
        const QDir folder(fixture.folder.path());
        click(&dialog, "bnTestConnection");
        QCOMPARE(testResult(&dialog), QStringLiteral("Connected: 3 parts, 2 processes, 0 tests"));

        // A file that is not there yet is only judged by its folder, and not made.
        const QString fresh = folder.filePath(QStringLiteral("fresh.db"));
        retype(&dialog, "txtFile", fresh);
        QCOMPARE(testResult(&dialog), QString());
        click(&dialog, "bnTestConnection");
        QVERIFY(testResult(&dialog).contains(QStringLiteral("does not exist yet")));
        QVERIFY(!QFile::exists(fresh));
        retype(&dialog, "txtFile", folder.filePath(QStringLiteral("nowhere/spc.db")));
        click(&dialog, "bnTestConnection");
        QVERIFY(testResult(&dialog).contains(QStringLiteral("does not exist.")));
        QVERIFY(fixture.errors.isEmpty());
    }

    void testingTheServer()
    {
        ScratchDatabase scratch(QStringLiteral("postgresql"));
        if (scratch.state() == ScratchDatabase::State::Skipped)
            QSKIP(qPrintable(scratch.message()));
        QVERIFY2(scratch.state() == ScratchDatabase::State::Ready, qPrintable(scratch.message()));
        QVERIFY(SamplingWidgetFixture::fillDatabase(scratch.dsn()));
        SamplingWidgetFixture fixture;
        dlgDataSource dialog(fixture.language, fixture.services());
        dialog.setDataSourceName(scratch.dsn());
        dialog.show();
        click(&dialog, "bnTestConnection");
        QCOMPARE(testResult(&dialog), QStringLiteral("Connected: 3 parts, 2 processes, 0 tests"));

        retype(&dialog, "txtDatabase", QStringLiteral("corvane_no_such_database"));
        click(&dialog, "bnTestConnection");
        QVERIFY2(testResult(&dialog).startsWith(QStringLiteral("Unable To Connect: ")),
                 qPrintable(testResult(&dialog)));
    }
};

CORVANE_TEST_SUITE(TestDataSourceDialog)
#include "tst_datasourcedialog.moc"
